// SPDX-License-Identifier: BSL-1.0
#pragma once

// File-system and system services: single files, folder trees, folder search, the program's folders, the machine.
#include <qzl_io/system/file.h>
#include <qzl_io/system/names.h>
#include <qzl_io/system/path.h>
#include <qzl_io/system/search.h>
#include <qzl_io/system/system_facts.h>
#include <qzl_io/system/system_info.h>
#include <qzl_io/system/tree_search.h>
#include <qzl_io/system/user_folders.h>
#include <qzl_io/system/working_paths.h>
