// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl.h>

// Checks a document against a schema and shows every mistake as a compiler would.

static const char* const kRules = R"({schema
	{block scene
		{block camera {value float {count 3} {unit "m"}}}
		{block light
			{count 0 many}
			{value string {doc "Its name."}}
			{value float {range 0 1000} {unit "W"} {doc "Its power."}}
		}
	}
})";

static const char* const kScene = R"({scene
	{camera 0 1.5}
	{light "lamp" 60}
	{lihgt "sun" 1200}
	{light "moon" -1}
})";

int main() {
    const eSDLSchema schema(eSDLDocument(kRules, "rules.sdls"));
    for (const xError::eDiagnostic& mistake : schema.Errors())
        std::cout << xError::Render(mistake) << '\n';

    const eSDLDocument scene(kScene, "scene.sdl");
    const auto mistakes = schema.Check(scene);
    for (const xError::eDiagnostic& mistake : mistakes)
        std::cout << xError::Render(mistake) << '\n';
    std::cout << schema.Says(scene.Find("scene/light/1")).doc << '\n';
    if (schema.Errors().empty() && mistakes.size() == 3)
        return 0;
    std::cerr << "There should be three mistakes in the scene.\n";
    return 1;
}
