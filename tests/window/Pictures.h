#pragma once

namespace zelvanor::tests {

// Script commands that make pictures of the window. The environment says where and how: PICTURES is the folder,
// PICTURES_SUFFIX stands behind each name, PICTURES_THEME may be "light" or "dark":
// then the window comes up as a user first sees it.
void AddPictureCommands();

// Called before a box or common dialog comes up; true when it is to come up for its picture, after which it goes away
// by itself.
bool ComesUpForPicture(bool IsBox);

// After the application object, before the window is made.
void UseThemeForPictures();

}  // namespace zelvanor::tests
