// SPDX-License-Identifier: BSL-1.0
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const path = require("node:path");
const Module = require("node:module");
const test = require("node:test");

const folder = path.join(__dirname, "..");
const description = JSON.parse(fs.readFileSync(path.join(folder, "package.json"), "utf8"));

// The extension in an editor that consists of what it asks of one.
function extensionIn({ program, fails }) {
  const seen = { warnings: [], clients: [] };
  const editor = {
    workspace: { getConfiguration: () => ({ get: (name, otherwise) => program ?? otherwise }) },
    window: { showWarningMessage: (text) => seen.warnings.push(text) },
  };
  class LanguageClient {
    constructor(id, name, server, client) {
      seen.clients.push({ server, client });
    }
    async start() {
      if (fails) throw new Error("no such program");
      seen.running = true;
    }
    isRunning() {
      return seen.running === true;
    }
    stop() {
      seen.running = false;
    }
  }
  const stand = { vscode: editor, "vscode-languageclient/node": { LanguageClient } };
  const load = Module._load;
  Module._load = (name, ...rest) => stand[name] ?? load(name, ...rest);
  try {
    delete require.cache[require.resolve("../extension.js")];
    return { extension: require("../extension.js"), seen };
  } finally {
    Module._load = load;
  }
}

test("the language server is sdl lsp, for SDL files, until the editor ends", async () => {
  const { extension, seen } = extensionIn({});
  await extension.activate();
  assert.deepStrictEqual(seen.clients[0].server, { command: "sdl", args: ["lsp"] });
  assert.deepStrictEqual(seen.clients[0].client.documentSelector, [{ language: "sdl" }]);
  assert.strictEqual(seen.running, true);
  extension.deactivate();
  assert.strictEqual(seen.running, false);
});

test("the program is that of the settings, and one that does not start is told of", async () => {
  const { extension, seen } = extensionIn({ program: "/opt/sdl", fails: true });
  await extension.activate();
  assert.strictEqual(seen.clients[0].server.command, "/opt/sdl");
  assert.match(seen.warnings[0], /"\/opt\/sdl lsp" did not start: no such program/);
  assert.strictEqual(extension.deactivate(), undefined);
});

test("what sdl check prints is a problem of the editor", () => {
  const { regexp } = description.contributes.problemMatchers[0].pattern;
  const found = new RegExp(regexp).exec('C:/data/scene.sdl:2:9: error: The string is broken by the end of the line!');
  assert.deepStrictEqual(found.slice(1), ["C:/data/scene.sdl", "2", "9", "error", "The string is broken by the end of the line!"]);
  assert.strictEqual(new RegExp(regexp).exec("  2 |     {light \"sun}"), null);
});

test("all files that the description names are there", () => {
  const { languages, grammars } = description.contributes;
  for (const name of [description.main, languages[0].configuration, grammars[0].path])
    assert.ok(fs.existsSync(path.join(folder, name)), name);
});

test("words, brackets and indentation are those of SDL", () => {
  const rules = JSON.parse(fs.readFileSync(path.join(folder, "language-configuration.json"), "utf8"));
  const increases = new RegExp(rules.indentationRules.increaseIndentPattern);
  for (const [line, expected] of [["{scene", true], ['\t{light "a"', true], ["{light 1}", false], ["; {", false], ['"{"', false]])
    assert.strictEqual(increases.test(line), expected, line);
  assert.deepStrictEqual("power = 1.5 %0 -7".match(new RegExp(rules.wordPattern, "g")), ["power", "1.5", "%0", "-7"]);
});
