#pragma once

#include <qzl_io/sdl.h>

#include "scene_words.h"

namespace bench {

/// The scene's words as a keyword table; the ids are those of eSceneWord.
inline eSDLKeyword* SceneKeywords() {
    static eSDLKeyword* head;
    static eSDLKeyword table[]{{head, sceneWords[0], 1},  {head, sceneWords[1], 2},   {head, sceneWords[2], 3},
                               {head, sceneWords[3], 4},  {head, sceneWords[4], 5},   {head, sceneWords[5], 6},
                               {head, sceneWords[6], 7},  {head, sceneWords[7], 8},   {head, sceneWords[8], 9},
                               {head, sceneWords[9], 10}, {head, sceneWords[10], 11}, {head, sceneWords[11], 12}};
    return table;
}

} // namespace bench
