// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/sdl/document.h>

// Puts numbers into a document in the digits that a person typed: 2.50 stays 2.50, and what is no number is refused.

static const char* const kExpected = R"({shop
  {apple 2.50}
  {pear 0x1F}
  {plum 1e3}
}
)";

int main() {
    eSDLDocument document("{shop\n  {apple 2.4}\n  {pear 30}\n  {plum 999}\n}\n", "shop.sdl");
    const struct {
        const char* path;
        const char* typed;
        bool isNumber;
    } entries[] = {
        {"shop/apple", "2.50", true},  {"shop/pear", "0x1F", true},
        {"shop/plum", "1e3", true},    {"shop/plum", "1,50", false},
        {"shop/plum", "cheap", false}, {"shop/plum", "1e999", false}, // beyond the range of a double
    };
    for (const auto& entry : entries) {
        const eSDLItem price = eSDLItem::Number(entry.typed);
        if (!price.IsGood())
            std::cout << '\'' << entry.typed << "' is no number\n";
        // A document refuses an item that is not good.
        if (document.Set(document.Find(entry.path).Value(), price) != entry.isNumber) {
            std::cerr << '\'' << entry.typed << "' was not treated as it should be.\n";
            return 1;
        }
    }
    std::cout << document.Text();
    // As a plain double the price would be written with as few digits as possible, as 2.5.
    const bool isShort = eSDLItem(2.50).Text() == "2.5";
    return isShort && document.Text() == kExpected && document.Find("shop/apple").Value().As<double>() == 2.5 ? 0 : 1;
}
