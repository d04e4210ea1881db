// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/layout.h>

static const char* const kScene = R"({scene ; made by hand
  {light "sun" 1.5}      ; not too bright
  {light "lamp"
    {power 2}
  }
}
)";

static const char* const kExpected = R"({scene ; made by hand
  {light "sun" 2.5}      ; not too bright
  {light "lamp"
    {power 3}
    {color 1 0.5 0.25}
  }
  {light "moon" 0.1}
}
)";

static bool Edit(eSDLDocument& document) {
    const eSDLNode scene = document.Find("scene");
    bool done = true;

    // A loop meets the children of a block as a reader does.
    for (const eSDLNode& light : scene)
        if (light.Is("light") && light.Value().As<std::string>() == "sun")
            done = document.Set(light.Value(1), 2.5F) && done;

    // A path leads to a node, and Value() to what it is set to.
    const eSDLNode power = document.Find("scene/light[1]/power");
    done = document.Set(power.Value(), power.Value().As<int>().value_or(0) + 1) && done;

    // What is inserted takes its indentation and its line end from its neighbours.
    const eSDLNode color = document.InsertAfter(power, eSDLItem::Block("color"));
    for (const float part : {1.0F, 0.5F, 0.25F})
        done = document.Append(color, part) && done;
    return document.Append(scene, eSDLItem::Source("{light \"moon\" 0.1}")) && done;
}

int main() {
    eSDLDocument document(kScene, "scene.sdl");
    if (!Edit(document) || document.Text() != kExpected) {
        std::cerr << "The document is not what it should be:\n" << document.Text();
        return 1;
    }
    std::cout << document.Text();

    // Laid out anew: the same values and comments, indented by the blocks that they are in.
    eSDLLayout layout;
    layout.indent = 4;
    layout.crLf = false;
    std::cout << layout.Format(document);

    // Whatever is wrong in a text is listed, and all of it can be edited nevertheless.
    const eSDLDocument wrong("{scene\n  {light \"sun}\n  {light $ 2}\n", "wrong.sdl");
    for (const xError::eDiagnostic& error : wrong.Errors(10))
        std::cout << Render(error);
    return wrong.ErrorCount() == 3 ? 0 : 1;
}
