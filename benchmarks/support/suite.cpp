// SPDX-License-Identifier: BSL-1.0
#include "suite.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace bench {
namespace {

std::vector<std::pair<int, eContender::eAdd>>& Contenders() {
    static std::vector<std::pair<int, eContender::eAdd>> contenders;
    return contenders;
}

} // namespace

double ValuesOfPass(const eWork& work, const eRow& row) {
    return row.values > 0 ? row.values : work.values;
}

std::string ContenderName(const eWork& work, const eRow& row) {
    if (work.axis.empty())
        return row.contender;
    return row.contender + ", " + std::to_string(std::llround(row.size)) + " " + work.axis;
}

std::string RowName(const eWork& work, const eRow& row) {
    return work.name + "/" + ContenderName(work, row);
}

void eSuite::Add(const std::string& work, double values, eRow row, const std::string& unit, const std::string& axis) {
    const auto found = std::ranges::find(works, work, [](const auto& each) { return each->name; });
    if (found != works.end()) {
        (*found)->rows.push_back(std::move(row));
        return;
    }
    auto made = std::make_unique<eWork>();
    made->name = work;
    made->values = values;
    made->unit = unit;
    made->axis = axis;
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
