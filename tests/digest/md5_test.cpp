// MD5 against RFC 1321's own answers.
#include <gtest/gtest.h>
#include <ktbase/digest.h>

#include <string>
#include <vector>

namespace {

std::string hex(const unsigned char* digest) {
    std::string text;
    for (int i = 0; i < 16; ++i) {
        text += "0123456789abcdef"[digest[i] / 16];
        text += "0123456789abcdef"[digest[i] % 16];
    }
    return text;
}

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// RFC 1321, A.5.
TEST(Md5, known_answers_come_out_of_every_route) {
    const std::pair<std::string, std::string> answers[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [message, answer] : answers) {
        const unsigned size = static_cast<unsigned>(message.size());
        unsigned char digest[16] = {};
        EXPECT_EQ(GetBufferMD5(digest, bytes(message), size), 1);
        EXPECT_EQ(hex(digest), answer) << message;
        unsigned char wrapped[16] = {};
        EXPECT_EQ(vantu::MD5(message.data(), size, wrapped), 1);
        EXPECT_EQ(hex(wrapped), answer) << message;
    }
}

}  // namespace
