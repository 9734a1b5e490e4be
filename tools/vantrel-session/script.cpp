#include "script.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <map>
#include <sstream>

bool TokenizeLine(const std::string& line, std::vector<std::string>& tokens) {
    tokens.clear();
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) ++i;
        if (i >= line.size()) break;
        std::string token;
        if (line[i] == '"') {
            const size_t close = line.find('"', i + 1);
            if (close == std::string::npos) return false;
            token = line.substr(i + 1, close - i - 1);
            i = close + 1;
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') token += line[i++];
        }
        tokens.push_back(token);
    }
    return true;
}

bool ParseIntToken(const std::string& token, int& value) {
    if (token.empty()) return false;
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(token.c_str(), &end, 10);
    if (*end != '\0' || errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX) return false;
    value = static_cast<int>(parsed);
    return true;
}

namespace {

using Action = CScriptedPrompts::DialogAction;

// Argument counts of the commands: minimum and maximum (-1: any number).
const std::map<std::string, std::pair<int, int>>& Arity() {
    static const std::map<std::string, std::pair<int, int>> arity = {
        {"file", {1, 1}},    {"dialog", {1, -1}},  {"click", {1, 1}},   {"set", {2, 2}},
        {"select", {2, 2}},  {"command", {1, 1}},  {"wait", {0, 1}},    {"sleep", {1, 1}},
        {"close", {0, 0}},   {"text", {1, 1}},     {"enabled", {1, 1}}, {"checked", {1, 1}},
        {"items", {1, 1}},   {"png", {2, 2}},      {"echo", {0, -1}},   {"key", {1, 1}},
        {"focus", {0, 0}},   {"accessible", {1, 1}}, {"rclick", {1, 1}},
    };
    return arity;
}

bool ParseDialogActions(SessionCommand& command, std::string& message) {
    if (!ParseIntToken(command.args[0], command.idd)) {
        message = "dialog: template number expected, got '" + command.args[0] + "'";
        return false;
    }
    const std::vector<std::string>& a = command.args;
    for (size_t i = 1; i < a.size();) {
        const std::string& word = a[i];
        Action action{Action::Ok, 0, {}};
        if (word == "ok" || word == "cancel" || word == "close") {
            action.kind = word == "ok" ? Action::Ok : word == "cancel" ? Action::Cancel : Action::Close;
            i += 1;
        } else if (word == "click" || word == "set" || word == "accessible") {
            const size_t need = word == "set" ? 3 : 2;
            if (i + need > a.size() || !ParseIntToken(a[i + 1], action.id)) {
                message = "dialog: '" + word + "' needs a control ID" + (word == "set" ? " and a text" : "");
                return false;
            }
            action.kind = word == "click" ? Action::Click : word == "set" ? Action::Set : Action::Accessible;
            if (word == "set") action.text = a[i + 2];
            i += need;
        } else {
            message = "dialog: unknown action '" + word + "'";
            return false;
        }
        command.actions.push_back(action);
    }
    return true;
}

bool CheckCommand(SessionCommand& command, std::string& message) {
    auto found = Arity().find(command.name);
    if (found == Arity().end()) {
        message = "unknown command '" + command.name + "'";
        return false;
    }
    const int count = static_cast<int>(command.args.size());
    const auto [least, most] = found->second;
    if (count < least || (most >= 0 && count > most)) {
        message = "wrong number of arguments for '" + command.name + "'";
        return false;
    }
    if (command.name == "dialog") return ParseDialogActions(command, message);
    static const char* const numericFirst[] = {"click", "set", "select", "command", "text", "enabled",
                                               "checked", "items",  "png",    "sleep",   "wait",
                                               "accessible", "rclick"};
    int number = 0;
    for (const char* name : numericFirst)
        if (command.name == name && count > 0 && !ParseIntToken(command.args[0], number)) {
            message = "'" + command.name + "': number expected, got '" + command.args[0] + "'";
            return false;
        }
    if (command.name == "select" && !ParseIntToken(command.args[1], number)) {
        message = "'select': item index expected, got '" + command.args[1] + "'";
        return false;
    }
    return true;
}

}  // namespace

bool ParseSessionScript(const std::string& text, std::vector<SessionCommand>& commands, SessionScriptError& error) {
    std::istringstream in(text);
    std::string raw;
    int lineNumber = 0;
    while (std::getline(in, raw)) {
        ++lineNumber;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        std::vector<std::string> tokens;
        if (!TokenizeLine(raw, tokens)) {
            error = {lineNumber, "unterminated quote"};
            return false;
        }
        if (tokens.empty() || tokens[0][0] == '#') continue;
        SessionCommand command;
        command.line = lineNumber;
        command.name = tokens[0];
        command.args.assign(tokens.begin() + 1, tokens.end());
        const size_t first = raw.find_first_not_of(" \t");
        const size_t last = raw.find_last_not_of(" \t");
        command.source = raw.substr(first, last - first + 1);
        std::string message;
        if (!CheckCommand(command, message)) {
            error = {lineNumber, message};
            return false;
        }
        commands.push_back(std::move(command));
    }
    return true;
}
