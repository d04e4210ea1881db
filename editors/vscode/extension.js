// SPDX-License-Identifier: BSL-1.0
"use strict";

const vscode = require("vscode");
const { LanguageClient } = require("vscode-languageclient/node");

// The language server is the program sdl.
function serverOptions(program) {
  return { command: program, args: ["lsp"] };
}

let client;

async function activate() {
  const program = vscode.workspace.getConfiguration("sdl").get("program", "sdl");
  client = new LanguageClient("sdl", "SDL", serverOptions(program), { documentSelector: [{ language: "sdl" }] });
  try {
    await client.start();
  } catch (error) {
    vscode.window.showWarningMessage(
      `"${program} lsp" did not start: ${error.message}. Files are coloured, but not checked; the setting sdl.program names the program.`
    );
  }
}

function deactivate() {
  return client?.isRunning() ? client.stop() : undefined;
}

module.exports = { activate, deactivate };
