// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/sha256.h"

#include <string>

#include <gtest/gtest.h>

// The examples of the standards: FIPS 180-4, and RFC 4231 for the keyed hash.

namespace {

std::string Digits(const IO::System::eHash& hash) {
    std::string text;
    for (const unsigned char byte : hash)
        for (const int half : {byte >> 4, byte & 15})
            text += "0123456789abcdef"[half];
    return text;
}

} // namespace

TEST(Sha256, GivesTheHashesOfTheStandard) {
    using IO::System::Sha256;
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", Digits(Sha256("")));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", Digits(Sha256("abc")));
    EXPECT_EQ("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
              Digits(Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")));
    EXPECT_EQ("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
              Digits(Sha256(std::string(1'000'000, 'a'))));
}

TEST(Sha256, WithAKeyGivesTheHashesOfTheStandard) {
    using IO::System::KeyedSha256;
    EXPECT_EQ("b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7",
              Digits(KeyedSha256(std::string(20, '\x0b'), "Hi There")));
    EXPECT_EQ("5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843",
              Digits(KeyedSha256("Jefe", "what do ya want for nothing?")));
    EXPECT_EQ("60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54",
              Digits(KeyedSha256(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First")));
}
