// The module's commands, one function a command. They run with the current document active.
#pragma once

namespace tarn::image {

// Group "_image".
void commandDrawImage();
void commandShowImage();
void commandList();
void commandRectifyTestImage();
// Deliberate: registered, and empty.
void commandNothing();

// Group "TARNIMAGE".
void commandTarnImage();
void commandAddImage();
void commandLoadCloud();
void commandRectifyImage();
void commandOpenImageList();
void commandTestImage();
void commandEraseInvalidImage();
void commandImageConversion();
void commandSetImageClarityRatio();
void commandSetImageOffsetRatio();

/// Registers "tarnimage", which needs only the adapter.
void registerFirstCommand();
/// Registers the other nine commands of group "TARNIMAGE".
void registerFurtherCommands();

}  // namespace tarn::image
