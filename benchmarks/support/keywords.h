// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/sdl.h>

#include "scene_words.h"

namespace bench {

// The words of the scene as a keyword table; the ids are those of eSceneWord.
inline eSDLKeyword* SceneKeywords() {
    static eSDLKeyword* head;
    static eSDLKeyword table[]{{head, kSceneWords[0], 1},  {head, kSceneWords[1], 2},   {head, kSceneWords[2], 3},
                               {head, kSceneWords[3], 4},  {head, kSceneWords[4], 5},   {head, kSceneWords[5], 6},
                               {head, kSceneWords[6], 7},  {head, kSceneWords[7], 8},   {head, kSceneWords[8], 9},
                               {head, kSceneWords[9], 10}, {head, kSceneWords[10], 11}, {head, kSceneWords[11], 12}};
    return table;
}

} // namespace bench
