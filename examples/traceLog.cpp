// A host with a log and an error report of its own: it sees objects come and go, and what it asked for wrongly.
#include <iostream>

#include "zovAssert.h"
#include "zovLog.h"
#include "zovMetamodel.h"

using zov::genericSet;
using zov::refPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::modelInfo;
using zovlog::logManager;
using zovlog::logRecord;

int main() {
    logManager::setLevel(zovlog::eLogTrace);
    logManager::setSink([](logRecord const& line) {
        static constexpr char const* levels[] = {"off", "info", "debug", "trace"};
        std::cout << levels[line.level] << ' ' << line.message.toUtf8() << '\n';
    });
    zov::setAssertHandler([](string const& report) {
        auto const condition = report.substr(0, report.find(L"\n\nFile:"));
        std::cout << "[" << string(condition.substr(condition.find(L'\n') + 1)).toUtf8() << "] does not hold\n";
    });

    auto model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"Part", [](refPtr<classInfo> part) {
        part->setLabel(L"Spare part");
        part->createFieldInfo(L"width", eDouble, genericSet(), L"")->setLabel(L"Width");
        return true;
    });

    try {
        model->classInfo(L"part", false)->addAliasname(L"");
    } catch (bool) { // false: reported already, nothing has changed
        std::cout << "no alias was added\n";
    }

    model->tearDown();
    model = nullptr;

    logManager::setLevel(zovlog::eLogOff);
    logManager::setSink({});
    zov::setAssertHandler({});
}
