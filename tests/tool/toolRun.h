// Runs a program as users do, and keeps what it said.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

struct toolRun {
    int mStatus = -1; // 128 and more: ended by a signal
    std::string mOut;
    std::string mErr;
};

// Runs the program with the arguments; `setting` is one more entry of its environment, NAME=value, or empty.
toolRun runProgram(std::string const& program, std::vector<std::string> const& arguments,
                   std::string const& setting = "");

// Runs zovModel.
toolRun runTool(std::vector<std::string> const& arguments, std::string const& setting = "");

// What `zovModel list --json` says of a database, with its exit status and complaints.
struct jsonList {
    toolRun mRun;
    nlohmann::ordered_json mClasses;
    nlohmann::ordered_json mRelations;

    explicit jsonList(std::string const& path, bool inherit = false);

    // The class, or the field of a class, of this label; null when there is none.
    nlohmann::ordered_json classOf(std::string const& label) const;
    nlohmann::ordered_json fieldOf(std::string const& classLabel, std::string const& label) const;

    // The labels of all classes, or of the fields of one, in the order of the answer.
    std::vector<std::string> labels() const;
    std::vector<std::string> labelsOf(std::string const& classLabel) const;
};

// Whether the text is one line, with its end.
bool isOneLine(std::string const& text);

bool holds(std::string const& text, std::string const& part);

// One element per line of the text, and back.
std::vector<std::string> linesOf(std::string const& text);
std::string textOf(std::vector<std::string> const& lines);
