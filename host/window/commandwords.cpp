#include "host/window/commandwords.h"

#include "base/text.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

struct Meaning {
  const char* command;
  const char* text;
};

constexpr Meaning kMeanings[] = {
    {"-POINTCLOUDATTACH", toSay("add a point cloud at a position, scaled and turned")},
    {"addImage", toSay("add images to the drawing")},
    {"APPLOAD", toSay("load a module")},
    {"ARX", toSay("list, load and unload modules")},
    {"BRINGTOFRONT", toSay("draw entities over all others")},
    {"CIRCLE", toSay("draw a circle")},
    {"CLOSE", toSay("close this drawing")},
    {"COPY", toSay("copy entities beside themselves")},
    {"COPYCLIP", toSay("copy entities for another drawing")},
    {"DIST", toSay("measure distance and angle between two points")},
    {"DRAWORDER", toSay("draw entities over or under others")},
    {"DVIEW", toSay("turn the view by the line of sight")},
    {"ERASE", toSay("remove entities")},
    {"EraseInvalidImage", toSay("remove image entities that have lost their image")},
    {"HELP", toSay("list all commands")},
    {"ID", toSay("show the coordinates of a point")},
    {"ImageConversion", toSay("convert image files to GeoTIFF, IMG or JPEG")},
    {"IMAGESERVER", toSay("choose image servers")},
    {"LAYER", toSay("make and set layers")},
    {"LAYOUT", toSay("make, rename, delete and show sheets")},
    {"LINE", toSay("draw straight lines")},
    {"LIST", toSay("show what entities are")},
    {"loadCloud", toSay("add a point cloud")},
    {"MIRROR", toSay("mirror entities about a line")},
    {"MOVE", toSay("move entities")},
    {"MREDO", toSay("redo several steps")},
    {"MSPACE", toSay("work in the model inside a viewport")},
    {"MVIEW", toSay("make a viewport on a sheet")},
    {"NEW", toSay("begin a drawing")},
    {"OOPS", toSay("bring back what was erased last")},
    {"OPEN", toSay("open a drawing")},
    {"OpenImageList", toSay("show the list of images")},
    {"PAN", toSay("move the view")},
    {"PASTECLIP", toSay("paste what was copied")},
    {"PLINE", toSay("draw a polyline of lines and arcs")},
    {"PLOT", toSay("plot to a PDF or PNG file")},
    {"PNGOUT", toSay("save the view as a picture")},
    {"PSPACE", toSay("work on the sheet")},
    {"QUIT", toSay("end the program")},
    {"RECOVER", toSay("open automatic copies after a crash")},
    {"rectifyImage", toSay("put an image into its place by control points")},
    {"REDO", toSay("redo one step")},
    {"REGEN", toSay("draw everything anew")},
    {"ROTATE", toSay("turn entities")},
    {"SAVE", toSay("save this drawing")},
    {"SAVEAS", toSay("save under another name or version")},
    {"SCALE", toSay("make entities larger or smaller")},
    {"SCRIPT", toSay("run the lines of a file")},
    {"SENDTOBACK", toSay("draw entities under all others")},
    {"SetImageClarityRatio", toSay("show images coarser and faster, or finer")},
    {"SetImageOffsetRatio", toSay("fetch more of the images around the view")},
    {"SETVAR", toSay("show and set system variables")},
    {"TEXT", toSay("write a line of text")},
    {"TWIST", toSay("turn the view")},
    {"U", toSay("undo one step")},
    {"UNDO", toSay("undo several steps")},
    {"VIEW", toSay("save, restore and delete named views")},
    {"ZOOM", toSay("show more, or less and larger")},
};

}  // namespace

QString meaningOf(const std::string& command) {
  for (const Meaning& one : kMeanings) {
    if (equalsIgnoreCase(std::string_view(one.command), command)) return words(one.text);
  }
  return {};
}

}  // namespace tarn::host
