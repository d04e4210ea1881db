// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <qzl_io/file_name.h>
#include <qzl_io/sdl/json_to_sdl.h>
#include <qzl_io/sdl/schema.h>

#include "support/temp_folder.h"

TEST(SchemaOfTheSampleScene, AcceptsIt) {
    const eTempFolder folder;
    const eFileName scene = folder.Name("scene.sdl");
    ASSERT_TRUE(JsonToSdl(eFileName(QZL_EXAMPLES_DIR "/scene.json"), scene));
    eSDLDocument rules;
    ASSERT_TRUE(rules.Open(eFileName(QZL_EXAMPLES_DIR "/scene.sdls")));
    const eSDLSchema schema(rules);
    for (const xError::eDiagnostic& mistake : schema.Errors())
        ADD_FAILURE() << xError::Render(mistake);
    eSDLDocument document;
    ASSERT_TRUE(document.Open(scene));
    for (const xError::eDiagnostic& mistake : schema.Check(document, 5))
        ADD_FAILURE() << xError::Render(mistake);
}
