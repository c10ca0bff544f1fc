#include "toolRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

#include "testDatabase.h"

namespace {

// The texts as the null-terminated list that the system wants.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int startAndWait(std::vector<std::string> arguments, std::vector<std::string> settings,
                 posix_spawn_file_actions_t const& actions) {
    pid_t child = 0;
    int const code = posix_spawn(&child, arguments.front().c_str(), &actions, nullptr, pointersTo(arguments).data(),
                                 pointersTo(settings).data());
    if (code != 0) throw std::runtime_error("cannot start " + arguments.front());
    int state = 0;
    if (waitpid(child, &state, 0) != child) throw std::runtime_error("cannot wait for " + arguments.front());
    return WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
}

nlohmann::ordered_json withLabel(nlohmann::ordered_json const& entries, std::string const& label) {
    for (auto const& entry : entries) {
        if (entry.at("label") == label) return entry;
    }
    return nullptr;
}

std::vector<std::string> labelsIn(nlohmann::ordered_json const& entries) {
    std::vector<std::string> labels;
    for (auto const& entry : entries)
        labels.push_back(entry.at("label"));
    return labels;
}

} // namespace

toolRun runProgram(std::string const& program, std::vector<std::string> const& arguments, std::string const& setting) {
    testFolder const folder;
    std::string const out = folder.path("out");
    std::string const err = folder.path("err");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);

    std::vector<std::string> all{program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<std::string> settings;
    if (!setting.empty()) settings.push_back(setting); // first come, first found
    for (char** at = environ; *at; ++at)
        settings.emplace_back(*at);

    toolRun run;
    run.mStatus = startAndWait(all, settings, actions);
    posix_spawn_file_actions_destroy(&actions);
    run.mOut = readFile(out);
    run.mErr = readFile(err);
    return run;
}

toolRun runTool(std::vector<std::string> const& arguments, std::string const& setting) {
    return runProgram(ZOV_TOOL, arguments, setting);
}

jsonList::jsonList(std::string const& path, bool inherit) {
    std::vector<std::string> arguments{"list", path, "--json"};
    if (inherit) arguments.emplace_back("--inherit");
    mRun = runTool(arguments);
    auto const answer = nlohmann::ordered_json::parse(mRun.mOut, nullptr, false);
    if (!answer.is_object()) return;
    mClasses = answer.value("classes", nlohmann::ordered_json());
    mRelations = answer.value("relations", nlohmann::ordered_json());
}

nlohmann::ordered_json jsonList::classOf(std::string const& label) const {
    return withLabel(mClasses, label);
}

nlohmann::ordered_json jsonList::fieldOf(std::string const& classLabel, std::string const& label) const {
    nlohmann::ordered_json const owner = classOf(classLabel);
    return owner.is_null() ? owner : withLabel(owner.at("fields"), label);
}

std::vector<std::string> jsonList::labels() const {
    return labelsIn(mClasses);
}

std::vector<std::string> jsonList::labelsOf(std::string const& classLabel) const {
    nlohmann::ordered_json const owner = classOf(classLabel);
    return owner.is_null() ? std::vector<std::string>() : labelsIn(owner.at("fields"));
}

bool isOneLine(std::string const& text) {
    return text.size() > 1 && text.find('\n') == text.size() - 1;
}

bool holds(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream source(text);
    for (std::string line; std::getline(source, line);)
        lines.push_back(line);
    return lines;
}

std::string textOf(std::vector<std::string> const& lines) {
    std::string text;
    for (std::string const& line : lines)
        text += line + "\n";
    return text;
}
