// SPDX-License-Identifier: BSL-1.0
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
    unsigned long long id; // never used twice
};

// Runs the group's initialisation functions in the order of registration: those that were registered when the call
// began and still are when their turn comes. An exception from one of them ends the call. An unknown group has no
// functions.
QZL_BASE_API void Init(const std::string& group);

// Runs the group's shut-down functions in reverse order, under the rules of Init.
QZL_BASE_API void Exit(const std::string& group);

} // namespace xCollectors::xGlobal
