// SPDX-License-Identifier: BSL-1.0
#include "../platform/raw_folder.h"
#include "tree.h"

namespace bench {
namespace {

const eContender contender(2, [](eSuite& suite) {
    using namespace platform;
    AddWays(suite, {"system calls by hand", eKind::Limit, 1.15, WalkByHand, SizesByHand, CopyByHand, DeleteByHand,
                    PurgeByHand});
});

}
} // namespace bench
