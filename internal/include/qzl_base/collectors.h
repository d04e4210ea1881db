#pragma once

#include <string>

#include <qzl_base/export.h>

// Functions that parts of a program register by static objects and that the application runs, group by group, when it
// is ready for them.
namespace xCollectors::xGlobal {

// Registers an initialisation and a shut-down function under a group name for as long as the object lives. Either
// function may be null.
class QZL_BASE_API eGlobalFunctionRegistrator {
public:
    eGlobalFunctionRegistrator(const std::string& group, void (*init)(), void (*exit)());
    ~eGlobalFunctionRegistrator();
    eGlobalFunctionRegistrator(const eGlobalFunctionRegistrator&) = delete;
    eGlobalFunctionRegistrator& operator=(const eGlobalFunctionRegistrator&) = delete;

private:
    unsigned long long id; // never given twice
};

// Runs the group's initialisation functions in the order of registration. Runs each function that was registered when
// the call began and still is when its turn comes; an exception from one ends the call. An unknown group runs nothing.
QZL_BASE_API void Init(const std::string& group);

// Runs the group's shut-down functions in the reverse order, under the same rules.
QZL_BASE_API void Exit(const std::string& group);

} // namespace xCollectors::xGlobal
