// A folder of the test's own, made fresh under the system's temporary directory and removed with everything
// in it when the test ends; and the scripted sessions run in one.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

class TempFolder {
public:
    TempFolder() {
        std::string pattern = ::testing::TempDir() + "vantrel-test-XXXXXX";
        if (mkdtemp(pattern.data()) != nullptr) m_path = pattern;
        EXPECT_FALSE(m_path.empty()) << "no temporary folder could be made";
    }
    ~TempFolder() {
        if (!m_path.empty()) std::filesystem::remove_all(m_path);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return m_path; }

    // Writes bytes to the file name in the folder and returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = m_path + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    // Paths of the files whose names contain part.
    std::vector<std::string> Files(const std::string& part) const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            if (entry.path().filename().string().find(part) != std::string::npos) files.push_back(entry.path());
        return files;
    }

    static std::string Read(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    static std::vector<std::string> Lines(const std::string& path) {
        std::ifstream in(path);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            lines.push_back(line);
        }
        return lines;
    }

private:
    std::string m_path;
};

// What vantrel-session printed and how it ended.
struct SessionOutput {
    std::vector<std::string> out, err;
    int exitCode = -1;
};

// Runs vantrel-session on the script at scriptPath with folder as its program directory, where its result
// files land. With a time limit, a session still running after it is killed (exit code 137). A launcher, such
// as "prlimit --as=BYTES", runs the session under the limits it sets.
inline SessionOutput RunSession(const TempFolder& folder, const std::string& scriptPath, int limitSeconds = 0,
                                const std::string& launcher = "") {
    const std::string out = folder.Path() + "/stdout.txt", err = folder.Path() + "/stderr.txt";
    const std::string limit = limitSeconds > 0 ? "timeout -s KILL " + std::to_string(limitSeconds) + " " : "";
    const std::string command = std::string("QT_QPA_PLATFORM=offscreen ") + limit + launcher + " '" +
                                VANTREL_SESSION_EXE + "' --dir '" + folder.Path() + "' '" + scriptPath + "' >'" +
                                out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    return SessionOutput{TempFolder::Lines(out), TempFolder::Lines(err), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

inline SessionOutput RunScript(const TempFolder& folder, const std::string& script, int limitSeconds = 0,
                               const std::string& launcher = "") {
    return RunSession(folder, folder.Write("script.session", script), limitSeconds, launcher);
}
