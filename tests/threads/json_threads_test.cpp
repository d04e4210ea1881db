// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "support/temp_folder.h"

TEST(JsonThreads, ConvertOneDocumentAtOnceToTheSameText) {
    constexpr std::size_t kThreads = 8;
    const eTempFolder folder;
    std::string json = "[";
    for (int item = 0; item < 200; ++item)
        json += std::string(item == 0 ? "" : ",") + "{\"name\":\"item \\u00e9 " + std::to_string(item) +
                "\",\"size\":" + std::to_string(item) + ".5,\"parts\":[1,true,null]}";
    const eFileName source(folder.Write("source.json", json + "]"));
    std::vector<int> converted(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 5; ++round)
                converted[thread] += JsonToSdl(source, eFileName(folder.Name(std::to_string(thread))));
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::string text = folder.Read("0");
    EXPECT_NE(std::string::npos, text.find("item \xc3\xa9 199"));
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        EXPECT_EQ(5, converted[thread]) << thread;
        EXPECT_EQ(text, folder.Read(std::to_string(thread))) << thread;
    }
}
