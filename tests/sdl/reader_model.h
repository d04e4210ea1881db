// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>

#include "parser_model.h"

// The behaviour expected of eSDLReader, call by call, under the same names; everything is read token by token. Copies
// share their sources, as copies of a reader do.
class eModelReader {
public:
    using eFiles = std::map<std::string, std::string>; // texts by name

    eModelReader(const std::string& text, const eFiles& filesToInclude) : files(&filesToInclude) { Push("", text); }

    int GetInt() {
        Require(Next() == sdlInt, 317, "Integer expected!");
        return Token().intValue;
    }
    float GetFloat() {
        Require(IsNumber(Next()), 308, "Number expected!");
        return Token().floatValue;
    }
    bool GetBool() { return !Test(sdlNumber) || GetInt() != 0; }
    std::string GetString() {
        Require(Next() == sdlString, 336, "String expected!");
        return Token().text;
    }
    std::wstring GetStringW() {
        Require(Next() == sdlString, 344, "String expected!");
        return StringToWideChar(Token().text, 65001);
    }
    std::string GetIdent(bool lower) {
        Require(IsWord(Next()), 352, "Identifier expected!");
        if (lower)
            Token().text = eModelParser::Lowered(Token().text);
        return Token().text;
    }
    int GetKeyword() {
        Require(Next() == sdlKeyword, 266, "unexpected token");
        return Token().intValue;
    }
    const eSDLParserToken& GetToken(eSDLParserLexType type) {
        Require(Check(type) || type == sdlNone, 537, "unexpected token");
        return Token();
    }
    int GetBlock(int id) {
        Require(Next() == sdlBlockStart, 569, "Block start expected!");
        Require(Next() == sdlKeyword && (id == 0 || id == Token().intValue), 257, "Invalid block identifier!");
        Token().type = sdlBlockId;
        return Token().intValue;
    }
    std::string GetSignature() {
        Require(Next() == sdlBlockStart, 526, "Not SDL file!");
        return GetIdent(false);
    }
    std::string GetStrings() {
        std::string strings;
        while (Check(sdlString))
            strings += Token().text + "|";
        Back();
        return strings;
    }

    bool Check(eSDLParserLexType type, int id = 0) {
        const eSDLParserLexType read = Next();
        if (type == sdlIdent)
            return IsWord(read);
        if (type == sdlNumber)
            return IsNumber(read);
        return read == type && (type != sdlKeyword || id == 0 || id == Token().intValue);
    }
    bool Test(eSDLParserLexType type, int id = 0) {
        const bool matches = Check(type, id);
        Back();
        return matches;
    }
    bool Test(int id) { return Test(sdlKeyword, id); }
    bool Start() { return Test(sdlBlockStart); }
    bool End() { return Test(sdlBlockEnd); }

    void Back() {
        if (Token().type == sdlBlockStart || Token().type == sdlBlockId)
            mark = std::exchange(markBefore, "");
        Parser().Back();
    }

    void SkipBlock(bool keepTerminator) {
        ++skipDepth;
        try {
            SkipToTerminator();
        } catch (...) {
            --skipDepth;
            throw;
        }
        --skipDepth;
        if (keepTerminator)
            Back();
    }

    void TakeBlockStart() { Require(Next() == sdlBlockStart, 569, "Block start expected!"); }
    void TakeBlockEnd() { Require(Next() == sdlBlockEnd, 553, "Block terminator expected!"); }
    void TakeControlStart() { Require(Next() == sdlOpen, 577, "Control Block start expected!"); }
    void TakeControlEnd() { Require(Next() == sdlClose, 561, "Control Block terminator expected!"); }

    void PushKeywords(const eSDLKeyword* table) { tables.push_back(table); }
    void PopKeywords() {
        if (!tables.empty())
            tables.pop_back();
    }
    std::vector<int>& Grate() { return grate; }

    // A missing file is an empty source.
    void Include(const eFileName& name) {
        const auto file = files->find(name.str());
        Push(name.str(), file == files->end() ? "" : file->second);
    }

    eSDLParserToken& Token() { return sources.back()->Token(); }
    eModelParser& Parser() {
        sources.back()->table = tables.empty() ? nullptr : tables.back();
        return *sources.back();
    }

private:
    static bool IsWord(eSDLParserLexType type) { return type == sdlIdent || type == sdlKeyword; }
    static bool IsNumber(eSDLParserLexType type) { return type == sdlInt || type == sdlFloat; }

    static void Require(bool met, int line, const char* message) {
        if (!met)
            throw xError::eException({"internal/src/bios/qzl_io/sdl_reader", line, message, ""});
    }

    void Push(const std::string& name, const std::string& bytes) {
        sources.push_back(std::make_shared<eModelParser>(name, TextOf(bytes)));
    }

    eSDLParserLexType Next() {
        for (;;) {
            Parser().Get();
            switch (Token().type) {
            case sdlNone:
                if (sources.size() == 1)
                    return sdlNone;
                sources.pop_back();
                break;
            case sdlString:
                ConvertEscSequence(&Token().text, false);
                return sdlString;
            case sdlBlockStart:
                markBefore = std::exchange(mark, Token().text);
                if ((!grate.empty() && grate.back() != 0) || mark.find('#') == std::string::npos)
                    return sdlBlockStart;
                SkipBlock(false);
                break;
            case sdlOpen:
                if (skipDepth > 0)
                    return sdlOpen;
                if (!ProcessControlBlock())
                    return sdlFloat;
                break;
            case sdlClose:
                if (skipDepth > 0)
                    return sdlClose;
                break;
            default:
                return Token().type;
            }
        }
    }

    void SkipToTerminator() {
        for (int depth = 0;;) {
            const eSDLParserLexType type = Next();
            Require(type != sdlNone && type != sdlError, 292, "Block terminator expected!");
            const bool ends = type == sdlBlockEnd || type == sdlClose;
            if (ends && depth == 0)
                return;
            depth += type == sdlBlockStart || type == sdlOpen;
            depth -= ends;
        }
    }

    bool ProcessControlBlock() {
        const eModelParser::eState before = Parser().StateBefore();
        Parser().Get();
        if (Token().type == sdlOperator) {
            Calculate(Token().text[0]);
            Parser().StatePrev(before);
            return false;
        }
        if (Token().type != sdlString) {
            Require(IsWord(Token().type), 352, "Identifier expected!");
            const std::string word = Token().text = eModelParser::Lowered(Token().text);
            Require(word == "include" || word == "define" || word == "mod", 466, "Invalid control block!");
        }
        SkipBlock(true);
        return true;
    }

    void Calculate(char operation) {
        float result = Operand();
        for (Parser().Get(); Token().type != sdlClose; Parser().Get())
            result = Combined(operation, result, Number());
        Token() = {sdlFloat, ToString(result), result, eModelParser::Truncated(result)};
    }

    float Operand() {
        Parser().Get();
        return Number();
    }

    float Number() {
        Require(IsNumber(Token().type), 308, "Number expected!");
        return Token().floatValue;
    }

    static float Combined(char operation, float left, float right) {
        return operation == '+'   ? left + right
               : operation == '-' ? left - right
               : operation == '*' ? left * right
                                  : left / right;
    }

    const eFiles* files;
    std::vector<std::shared_ptr<eModelParser>> sources;
    std::vector<const eSDLKeyword*> tables;
    std::vector<int> grate;
    int skipDepth = 0;
    std::string mark;
    std::string markBefore;
};
