// Runs vantrel-session on a script written by a test, in a fresh directory where its result files land,
// and hands back what it printed and what it left there.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

class SessionDirectory {
public:
    SessionDirectory() {
        char pattern[] = "/tmp/vantrel-session-test-XXXXXX";
        if (mkdtemp(pattern) != nullptr) m_path = pattern;
    }
    ~SessionDirectory() {
        if (!m_path.empty()) std::filesystem::remove_all(m_path);
    }
    SessionDirectory(const SessionDirectory&) = delete;
    SessionDirectory& operator=(const SessionDirectory&) = delete;

    const std::string& Path() const { return m_path; }

    // Writes the script into the directory and runs it there; the exit code lands in exitCode.
    std::vector<std::string> Run(const std::string& script, int& exitCode) const {
        const std::string scriptPath = m_path + "/script.session";
        const std::string outPath = m_path + "/stdout.txt";
        std::ofstream(scriptPath) << script;
        const std::string command = std::string("QT_QPA_PLATFORM=offscreen '") + VANTREL_SESSION_EXE + "' --dir '" +
                                    m_path + "' '" + scriptPath + "' >'" + outPath + "' 2>&1";
        const int status = std::system(command.c_str());
        exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::vector<std::string> lines;
        std::ifstream in(outPath);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }

    // Paths of the result files that the session wrote.
    std::vector<std::string> ResultFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            if (entry.path().filename().string().find("_result.txt") != std::string::npos)
                files.push_back(entry.path().string());
        return files;
    }

    static std::string ReadBytes(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    std::string m_path;
};

// Absolute path of a sample file; a script's relative paths would be taken from the temporary directory.
inline std::string SampleData(const std::string& name) { return std::string(VANTREL_SOURCE_DIR) + "/data/" + name; }

// The text after "text ID: " of every such line, in order.
inline std::vector<std::string> ReadoutTexts(const std::vector<std::string>& transcript, int id) {
    const std::string prefix = "text " + std::to_string(id) + ": ";
    std::vector<std::string> texts;
    for (const std::string& line : transcript)
        if (line.compare(0, prefix.size(), prefix) == 0) texts.push_back(line.substr(prefix.size()));
    return texts;
}

inline std::string JoinLines(const std::vector<std::string>& lines) {
    std::string whole;
    for (const std::string& line : lines) whole += "    " + line + "\n";
    return whole;
}
