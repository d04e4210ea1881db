// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <string>
#include <string_view>

#include "../support/by_hand.h"
#include "texts.h"

namespace bench {
namespace {

size_t PutAll(eHandRoom& room, const eTexts& texts) {
    eHandWriter<eHandRoom> out(room);
    for (size_t round = 0; round < eTexts::kRounds; ++round)
        for (const std::string& text : texts.texts)
            out.Put(text);
    return static_cast<size_t>(out.Next() - room.Begin());
}

const eContender contender(1, [](eSuite& suite) {
    for (const eTexts& texts : AllTexts(suite.Options()))
        for (const ePlace place : {ePlace::AtEnd, ePlace::Among}) {
            const auto room = std::make_shared<eHandRoom>(texts.Bytes());
            eRow row;
            row.contender = "memcpy by hand";
            row.kind = eKind::Limit;
            row.target = 1.5;
            row.pass = [room, &texts] { return PutAll(*room, texts); };
            row.check = [room, &texts] {
                const std::string_view written(reinterpret_cast<const char*>(room->Begin()), texts.Bytes());
                return SameSum(SumOfBytes(written), SumOfTexts(texts));
            };
            AddRow(suite, place, texts, row);
        }
});

} // namespace
} // namespace bench
