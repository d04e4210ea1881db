// SPDX-License-Identifier: BSL-1.0
#include "lsp/server.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include <qzl_io/version.h>

#include "lsp/features.h"

namespace {

using nlohmann::json;

// Codes of the protocol.
constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParameters = -32602;
constexpr int kInternalError = -32603;
constexpr int kNotInitialized = -32002;

class eUnknownText : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

json Capabilities() {
    constexpr int kIncremental = 2;
    return {{"capabilities",
             {{"positionEncoding", "utf-16"},
              {"textDocumentSync", {{"openClose", true}, {"change", kIncremental}}},
              {"documentSymbolProvider", true},
              {"foldingRangeProvider", true},
              {"hoverProvider", true},
              {"definitionProvider", true},
              {"documentFormattingProvider", true},
              {"completionProvider", {{"triggerCharacters", json::array({"{"})}}}}},
            {"serverInfo", {{"name", "sdl"}, {"version", QZL_IO_VERSION_TEXT}}}};
}

std::size_t OffsetIn(const eOpenText& text, const json& parameters) {
    return text.Lines().OffsetOf(PositionIn(parameters.at("position")));
}

using eAnswer = json (*)(const eOpenText& text, const json& parameters);

template <json (*of)(const eOpenText&)>
json Whole(const eOpenText& text, const json&) {
    return of(text);
}

template <json (*at)(const eOpenText&, std::size_t)>
json AtPlace(const eOpenText& text, const json& parameters) {
    return at(text, OffsetIn(text, parameters));
}

json Layout(const eOpenText& text, const json& parameters) {
    return FormattingOf(text, parameters.at("options"));
}

const std::map<std::string_view, eAnswer>& Answers() {
    static const std::map<std::string_view, eAnswer> answers = {
        {"textDocument/documentSymbol", &Whole<OutlineOf>},
        {"textDocument/foldingRange", &Whole<FoldsOf>},
        {"textDocument/hover", &AtPlace<HoverAt>},
        {"textDocument/definition", &AtPlace<DefinitionAt>},
        {"textDocument/completion", &AtPlace<CompletionsAt>},
        {"textDocument/formatting", &Layout},
    };
    return answers;
}

const std::string& UriIn(const json& parameters) {
    return parameters.at("textDocument").at("uri").get_ref<const std::string&>();
}

} // namespace

bool eServer::Serve() {
    while (!ended) {
        const auto text = channel.Read();
        if (!text)
            break;
        TakeText(*text);
    }
    return state == eState::ShutDown;
}

void eServer::TakeText(const std::string& text) {
    const json message = json::parse(text, nullptr, false);
    if (message.is_discarded())
        Refuse(nullptr, kParseError, "The message is not JSON.");
    else if (!message.is_object())
        Refuse(nullptr, kInvalidRequest, "The message is not an object.");
    else
        Take(message);
}

void eServer::Take(const json& message) {
    const auto method = message.find("method");
    const auto id = message.find("id");
    if (method == message.end()) // an answer; nothing was asked
        return;
    static const json kNone = json::object();
    const auto parameters = message.find("params");
    const json& given = parameters == message.end() ? kNone : *parameters;
    if (!method->is_string())
        Refuse(id == message.end() ? json() : *id, kInvalidRequest, "The method is not a string.");
    else if (id != message.end())
        TakeRequest(*id, method->get_ref<const std::string&>(), given);
    else
        TakeNotification(method->get_ref<const std::string&>(), given);
}

void eServer::TakeRequest(const json& id, const std::string& method, const json& parameters) {
    if (method == "initialize" && state == eState::New) {
        state = eState::Running;
        return Answer(id, Capabilities());
    }
    if (state == eState::New)
        return Refuse(id, kNotInitialized, "The server has not been initialized.");
    if (state != eState::Running)
        return Refuse(id, kInvalidRequest, "The server has been shut down.");
    if (method == "shutdown") {
        state = eState::ShutDown;
        return Answer(id, nullptr);
    }
    const auto answer = Answers().find(method);
    if (answer == Answers().end())
        return Refuse(id, kMethodNotFound, "There is no method " + method + ".");
    try {
        Answer(id, answer->second(TextOf(parameters), parameters));
    } catch (const eUnknownText& unknown) {
        Refuse(id, kInvalidParameters, unknown.what());
    } catch (const json::exception& wrong) {
        Refuse(id, kInvalidParameters, wrong.what());
    } catch (const std::exception& failure) {
        Refuse(id, kInternalError, failure.what());
    }
}

// What is wrong with a notification cannot be told.
void eServer::TakeNotification(const std::string& method, const json& parameters) {
    ended = method == "exit";
    if (state != eState::Running)
        return;
    try {
        if (method == "textDocument/didOpen")
            Open(parameters);
        else if (method == "textDocument/didChange")
            Change(parameters);
        else if (method == "textDocument/didClose")
            Close(parameters);
    } catch (const eUnknownText&) {
    } catch (const json::exception&) {
    }
}

void eServer::Answer(const json& id, json result) {
    channel.Write({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

void eServer::Refuse(const json& id, int code, const std::string& message) {
    channel.Write({{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", message}}}});
}

void eServer::Open(const json& parameters) {
    const json& item = parameters.at("textDocument");
    const std::string& uri = UriIn(parameters);
    const auto [place, isNew] = texts.try_emplace(uri, uri, item.at("text").get<std::string>());
    if (!isNew)
        place->second.Replace(item.at("text").get<std::string>());
    Publish(uri, DiagnosticsOf(place->second));
}

void eServer::Change(const json& parameters) {
    eOpenText& text = TextOf(parameters);
    for (const json& change : parameters.at("contentChanges")) {
        const auto& added = change.at("text").get_ref<const std::string&>();
        if (const auto range = change.find("range"); range != change.end())
            text.Replace(PositionIn(range->at("start")), PositionIn(range->at("end")), added);
        else
            text.Replace(added);
    }
    Publish(text.Uri(), DiagnosticsOf(text));
}

void eServer::Close(const json& parameters) {
    const std::string uri = TextOf(parameters).Uri();
    texts.erase(uri);
    Publish(uri, json::array());
}

void eServer::Publish(const std::string& uri, json diagnostics) {
    channel.Write({{"jsonrpc", "2.0"},
                   {"method", "textDocument/publishDiagnostics"},
                   {"params", {{"uri", uri}, {"diagnostics", std::move(diagnostics)}}}});
}

eOpenText& eServer::TextOf(const json& parameters) {
    const auto place = texts.find(UriIn(parameters));
    if (place == texts.end())
        throw eUnknownText("The document is not open.");
    return place->second;
}
