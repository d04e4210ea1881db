#include "suite.h"

#include <algorithm>
#include <utility>

namespace bench {
namespace {

std::vector<std::pair<int, eContender::eAdd>>& Contenders() {
    static std::vector<std::pair<int, eContender::eAdd>> contenders;
    return contenders;
}

} // namespace

void eSuite::Add(const std::string& work, double values, eRow row, const std::string& unit) {
    const auto found = std::ranges::find(works, work, [](const auto& each) { return each->name; });
    if (found != works.end()) {
        (*found)->rows.push_back(std::move(row));
        return;
    }
    auto made = std::make_unique<eWork>();
    made->name = work;
    made->values = values;
    made->unit = unit;
    made->rows.push_back(std::move(row));
    works.push_back(std::move(made));
}

eContender::eContender(int rank, eAdd add) {
    Contenders().emplace_back(rank, add);
}

void eContender::AddAll(eSuite& suite) {
    std::ranges::stable_sort(Contenders(), {}, [](const auto& each) { return each.first; });
    for (const auto& [rank, add] : Contenders())
        add(suite);
}

} // namespace bench
