// "Crop...": the whole picture with a frame of the shape of the box the page
// shows it in, moved and resized with the mouse and the keyboard; OK crops
// the picture to the frame.
#pragma once
#include <windows.h>

#include <cstdint>

#include "base/global_block.h"

// The dialog (template "CropPicture") over `owner` for the picture in
// `*picture` and a box of boxW x boxH. After OK `*picture` is the cropped
// picture (the old one freed) and the result is true; Cancel leaves it.
bool CropPictureDialog(HWND owner, BlockHandle* picture, int32_t boxW, int32_t boxH);
