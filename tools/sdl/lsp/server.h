// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <map>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "lsp/channel.h"
#include "lsp/open_text.h"

// A language server: answers an editor's requests about the documents that are open in it, and tells it what is wrong
// in them whenever they change.
class eServer {
public:
    explicit eServer(eChannel& channelToEditor) : channel(channelToEditor) {}

    // Serves until the editor says that it ends, or its messages end. True if it had asked to shut down before.
    bool Serve();

private:
    using eJson = nlohmann::json;

    enum class eState { New, Running, ShutDown };

    void TakeText(const std::string& text);
    void Take(const eJson& message);
    void TakeRequest(const eJson& id, const std::string& method, const eJson& parameters);
    void TakeNotification(const std::string& method, const eJson& parameters);
    void Answer(const eJson& id, eJson result);
    void Refuse(const eJson& id, int code, const std::string& message);

    void Open(const eJson& parameters);
    void Change(const eJson& parameters);
    void Close(const eJson& parameters);
    void Publish(const std::string& uri, eJson diagnostics);

    // The document that the parameters are about. Throws eUnknownText.
    eOpenText& TextOf(const eJson& parameters);

    eChannel& channel;
    eState state = eState::New;
    bool ended = false;
    std::map<std::string, eOpenText, std::less<>> texts; // by their addresses
};
