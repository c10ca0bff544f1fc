// zovModel: what is in an SQLite database, told by a model of it. docs/tool.md describes its use.

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include <zovString.h>

#include "checkReport.h"
#include "databaseModel.h"
#include "displayText.h"
#include "dotReport.h"
#include "findReport.h"
#include "jsonReport.h"
#include "listReport.h"
#include "modelBuilder.h"
#include "relationsReport.h"
#include "schemaReader.h"
#include "sqliteDatabase.h"

using zov::string;

namespace {

enum exitStatus : int {
    eAllWell = 0,
    eNotAll = 1, // a name is unknown, a check found something, or the model cannot hold all of the database
    eNothing = 2 // no answer: the database cannot be read, or the command not understood
};

enum class command { list, find, relations, dot, check };

struct request {
    command mCommand = command::list;
    std::string mDatabase;
    bool mInherit = false;
    bool mAsJson = false;
    std::vector<std::string> mNames; // of find, of dot's classes, of the one class of relations
};

// The option parser takes a text in square brackets for a list, "{}" for nothing, and what follows "--" not always for
// plain text, but tables and files may have such names. A mark in front keeps them from that; it is marked as well.
constexpr char cMark = '=';
constexpr std::string_view cToBeMarked = "[{=";

std::vector<std::string> markedArguments(int count, char const* const* texts) {
    std::vector<std::string> arguments;
    bool isPlain = false;
    for (char const* const* at = texts + 1; at < texts + count; ++at) {
        std::string const text = *at;
        if (text == "--" && !isPlain) {
            isPlain = true;
        } else {
            bool const isMarked = isPlain || cToBeMarked.find(text.substr(0, 1)) != std::string_view::npos;
            arguments.push_back(isMarked && !text.empty() ? cMark + text : text);
        }
    }
    std::reverse(arguments.begin(), arguments.end()); // the order in which the parser takes them
    return arguments;
}

std::string unmarked(std::string const& text) {
    return text.starts_with(cMark) ? text.substr(1) : text;
}

void complain(std::string const& line) {
    std::cerr << "zovModel: " << line << '\n';
}

void describe(CLI::App& app, request& wanted) {
    app.require_subcommand(1);
    app.footer("Exit status: 0 all is well, 1 a name is unknown, a check found something or the model cannot hold all\n"
               "of the database, 2 the database cannot be read or the command is not understood.\n");
    auto const addCommand = [&](command which, char const* name, char const* what) {
        CLI::App* const added = app.add_subcommand(name, what);
        added->add_option("DB", wanted.mDatabase, "The database file, which is only read")->required();
        added->add_flag("--inherit", wanted.mInherit,
                        "Derive a class from another where the whole primary key refers to the other's");
        added->callback([&wanted, which] { wanted.mCommand = which; });
        return added;
    };
    CLI::App* const list = addCommand(command::list, "list", "List all classes with their fields, types and keys");
    list->add_flag("--json", wanted.mAsJson, "Write JSON");
    CLI::App* const find =
        addCommand(command::find, "find", "Say what names denote: a class (Part) or a field (Part.width)");
    find->add_option("NAME", wanted.mNames, "Class names and qualified names of fields")->required();
    CLI::App* const relations =
        addCommand(command::relations, "relations", "List the relations that foreign keys make, from both sides");
    relations->add_option("CLASS", wanted.mNames, "Only those of this class")->expected(0, 1);
    CLI::App* const dot = addCommand(command::dot, "dot", "Write a class diagram for Graphviz");
    dot->add_option("--classes", wanted.mNames, "Only these classes; stands behind DB")->expected(1, -1);
    addCommand(command::check, "check", "Report what makes a model hard to trust");
}

// Everything at once, so that nothing is written when something fails on the way.
void write(std::string const& text) {
    std::cout << text << std::flush;
    if (!std::cout) throw zovModel::databaseError("cannot write the answer");
}

// Programs that read JSON get the notes that people find in the list.
void complainOfFullStops(zovModel::databaseModel const& model) {
    for (auto const& each : model.classes()) {
        if (!zovModel::isOutOfReach(*each)) continue;
        complain("note: no qualified name reaches the fields of " + zovModel::quoted(each->label()).toUtf8() +
                 ", since its own name holds a full stop");
    }
}

// The classes of these names, all without any; false when one of them is unknown.
bool chooseClasses(zovModel::databaseModel const& model, std::vector<string> const& names,
                   std::vector<zovModel::databaseModel::classPtr>& chosen) {
    if (names.empty()) chosen = model.classes();
    bool areAllKnown = true;
    for (string const& name : names) {
        auto const found = model.classesNamed(name);
        chosen.insert(chosen.end(), found.begin(), found.end());
        if (!found.empty()) continue;
        complain("there is no class " + zovModel::quoted(name).toUtf8());
        areAllKnown = false;
    }
    return areAllKnown;
}

// Writes the answer; false when it is not all that was asked for, or a check found something.
bool carryOut(request const& wanted, zovModel::databaseModel const& model) {
    std::vector<string> names;
    for (std::string const& name : wanted.mNames)
        names.push_back(string::fromUtf8(unmarked(name)));
    switch (wanted.mCommand) {
    case command::list:
        write(wanted.mAsJson ? zovModel::jsonReport(model) : zovModel::listReport(model).toUtf8());
        if (wanted.mAsJson) complainOfFullStops(model);
        return true;
    case command::find: {
        zovModel::findResult const found = zovModel::findReport(model, names);
        write(found.mText.toUtf8());
        return found.mAllKnown;
    }
    case command::relations: {
        auto const found =
            names.empty() ? zovModel::relationsReport(model) : zovModel::relationsReport(model, names.front());
        write(found.mText.toUtf8());
        return found.mIsKnown;
    }
    case command::dot: {
        std::vector<zovModel::databaseModel::classPtr> chosen;
        bool const areAllKnown = chooseClasses(model, names, chosen);
        write(zovModel::dotReport(model, chosen).toUtf8());
        return areAllKnown;
    }
    case command::check: {
        zovModel::checkResult const checked = zovModel::checkReport(model);
        write(checked.mText.toUtf8());
        return checked.mIsClean;
    }
    }
    return false;
}

exitStatus answer(request const& wanted) {
    zovModel::databaseModel model;
    zovModel::fillModel(model, zovModel::readSchema(zovModel::database(unmarked(wanted.mDatabase))), wanted.mInherit);
    bool const isComplete = carryOut(wanted, model) && model.problems().empty();
    for (string const& warning : model.warnings())
        complain("warning: " + warning.toUtf8());
    for (string const& problem : model.problems())
        complain(problem.toUtf8());
    return isComplete ? eAllWell : eNotAll;
}

} // namespace

int main(int argc, char** argv) {
    try {
        request wanted;
        CLI::App app("Shows what is in an SQLite database, as classes and fields.", "zovModel");
        describe(app, wanted);
        try {
            app.parse(markedArguments(argc, argv));
        } catch (CLI::ParseError const& stop) { // a request for help is one too
            return app.exit(stop) == 0 ? eAllWell : eNothing;
        }
        return answer(wanted);
    } catch (std::bad_alloc const&) {
        complain("out of memory");
    } catch (std::exception const& problem) {
        complain(problem.what());
    } catch (bool) { // the library has told why
        complain("the model could not be built");
    }
    return eNothing;
}
