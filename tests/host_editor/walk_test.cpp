// Sessions as a user sees them: every prompt with its keywords and defaults, every answer.
#include <gtest/gtest.h>

#include <set>

#include "base/file.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/host_editor/drawnlines.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

struct Session {
  const char* name;
  const char* transcript;
};

// What a user types stands behind the last ": " of a line; each session goes on with the drawing of
// the one before.
const Session kSessions[] = {
    {"Drawing", R"(Command: LINE
First point: 0,0
Next point or [Undo]: 10,0
Next point or [Undo]: 10,10
Next point or [Close/Undo]: C
Command: LINE
First point: 40,0
Next point or [Undo]: 50,0
Next point or [Undo]: U
Next point or [Undo]: 40,10
Next point or [Undo]: 
Command: PLINE
First point: 0,0
Next point or [Arc/Close/Line/Undo]: 5,5
Next point or [Arc/Close/Line/Undo]: A
Next point or [Arc/Close/Line/Undo]: 9,5
Next point or [Arc/Close/Line/Undo]: L
Next point or [Arc/Close/Line/Undo]: 9,0
Next point or [Arc/Close/Line/Undo]: 
Command: CIRCLE
Center point: 20,20
Radius or [Diameter]: 5
Command: CIRCLE
Center point: 20,20
Radius or [Diameter] <5>: D
Diameter <10>: 8
Command: TEXT
Start point of the text: 1,1
Height <2.5>: 
Rotation angle <0>: 
Text: words
Command: TEXT
Start point of the text: 1,1
Height <2.5>: 3
Rotation angle <0>: 45
Text: more words
)"},
    {"Editing", R"(Command: MOVE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point or [Displacement] <Displacement>: 0,0
Second point or <use first point as displacement>: 1,1
1 moved.
Command: MOVE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point or [Displacement] <Displacement>: 2,2
Second point or <use first point as displacement>: 
1 moved.
Command: COPY
Select objects: L
1 found, 1 selected.
Select objects: 
Base point or [Displacement] <Displacement>: 0,0
Second point or <use first point as displacement>: 3,3
1 copied.
Second point or <end>: 6,6
1 copied.
Second point or <end>: 
Command: ROTATE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point: 0,0
Rotation angle or [Reference]: 90
1 rotated.
Command: ROTATE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point: 0,0
Rotation angle or [Reference]: R
Reference angle <0>: 30
New angle: 60
1 rotated.
Command: SCALE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point: 0,0
Scale factor or [Reference]: 2
1 scaled.
Command: SCALE
Select objects: L
1 found, 1 selected.
Select objects: 
Base point: 0,0
Scale factor or [Reference]: R
Reference length <1>: 2
New length: 3
1 scaled.
Command: ERASE
Select objects: L
1 found, 1 selected.
Select objects: 
1 erased.
Command: OOPS
1 brought back.
Command: GRIP_STRETCH
Select entities with grips before this command.
Command: COPYCLIP
Select objects: ALL
11 found, 11 selected.
Select objects: 
11 copied to the clipboard.
Command: PASTECLIP
Insertion point: 50,50
11 pasted.
)"},
    {"Undo", R"(Command: U
PASTECLIP
Command: REDO
PASTECLIP
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: BE
Command: LINE
First point: 7,7
Next point or [Undo]: 8,8
Next point or [Undo]: 
Command: LINE
First point: 
Next point or [Undo]: 9,9
Next point or [Undo]: 
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: E
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: 
GROUP
Command: MREDO
Number of steps to redo or [All/Last]: L
GROUP
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: M
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: 2
Mark encountered.
GROUP
PASTECLIP
Command: UNDO
Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: C
How much to keep for undo [All/None/One]: ALL
)"},
    {"Views", R"(Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: E
Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: C
Center point: 5,5
Height or magnification (nX): 20
Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: W
First corner: 0,0
Opposite corner: 4,4
Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: 1,1
Opposite corner: 3,3
Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: P
Command: ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: 0.5x
Command: PAN
Base point or displacement: 0,0
Second point: 1,0
Command: REGEN
Command: DVIEW
Option [TWist/eXit] <eXit>: TW
Twist of the view in degrees: 30
Command: DVIEW
Option [TWist/eXit] <eXit>: 
Command: TWIST
Twist of the view in degrees: 0
)"},
    {"LayersAndSheets", R"(Command: LAYER
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: N
Name of the new layer: walls
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: S
Name of the layer to be current: walls
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: C
Colour, 1 to 255: 3
Names of the layers, or *: walls
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: ?
"0"  colour 7  on
"walls"  colour 3  on  current
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: 
Command: LAYER
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: OFF
Names of the layers, or *: 0
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: ON
Names of the layers, or *: *
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: S
Name of the layer to be current: 0
Option [?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: 
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: ?
Model (shown)
Layout1
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: N
Name of the new layout <Layout2>: 
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: S
Layout to show <Layout1>: Layout2
Command: MSPACE
Command: PSPACE
Command: MVIEW
Corner of the viewport or [ON/OFF/Fit]: 10,10
Opposite corner: 90,60
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: R
Layout to rename <Layout2>: Layout2
New name: Plan
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: D
Layout to delete <Plan>: Plan
Command: LAYOUT
Layout [?/Delete/New/Rename/Set] <Set>: S
Layout to show <Layout1>: Model
Command: MSPACE
This needs a layout (TILEMODE 0).
)"},
    {"Inquiry", R"(Command: ID
Point: 1,2
X = 1  Y = 2  Z = 0
Command: DIST
First point: 0,0
Second point: 3,4
Distance = 5  angle = 53.13010235415598
Delta X = 3  Delta Y = 4  Delta Z = 0
Command: SETVAR
Variable name or ?: USERI1
New value for USERI1 <0>: 5
Command: USERI1
New value for USERI1 <5>: 6
Command: SETVAR
Variable name or ?: VIEWTWIST
VIEWTWIST = 0 (read only)
Command: OSMODE
New value for OSMODE <0>: 
Command: LINE
First point: 0,0
Next point or [Undo]: 'ZOOM
Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]: C
Center point: 5,5
Height or magnification (nX): 20
Resuming LINE command.
Next point or [Undo]: 'PAN
Base point or displacement: 0,0
Second point: 1,0
Resuming LINE command.
Next point or [Undo]: 1,1
Next point or [Undo]: 
)"},
};

/// What was typed to get such a transcript.
std::vector<std::string> typedIn(const std::string& transcript) {
  std::vector<std::string> typed;
  for (const std::string& line : split(transcript, '\n')) {
    const size_t at = line.rfind(": ");
    if (at != std::string::npos) typed.push_back(line.substr(at + 2));
  }
  return typed;
}

TEST(Walk, EachCommandAsksAndAnswersAsTheUserKnowsIt) {
  ScriptedHost host;
  std::set<std::string> walked;
  for (const Session& session : kSessions) {
    const std::vector<std::string> typed = typedIn(session.transcript);
    EXPECT_EQ(host.runLines(typed), session.transcript) << session.name;
    walked.insert(typed.begin(), typed.end());
  }
  for (const char* name :
       {"ERASE",    "OOPS",      "MOVE",  "COPY",  "ROTATE", "SCALE",  "GRIP_STRETCH",
        "COPYCLIP", "CIRCLE",    "LINE",  "PLINE", "TEXT",   "U",      "UNDO",
        "REDO",     "PASTECLIP", "ZOOM",  "PAN",   "REGEN",  "DVIEW",  "MSPACE",
        "PSPACE",   "LAYOUT",    "LAYER", "ID",    "DIST",   "SETVAR", "OSMODE"}) {
    EXPECT_EQ(walked.count(name), 1U) << name;
  }
}

/// Steps between UNDO Begin and End go and come together; whatever was open before stays.
TEST(Walk, AGroupIsOneStepOfUndo) {
  ScriptedHost host;
  host.run({"LINE 0,0 1,0", ""});
  const DrawingState before = stateOf(host.app());
  host.run({"UNDO BEgin", "LINE 0,1 1,1", "", "MOVE ALL", "", "0,0 5,5", "LAYER M", "walls", "",
            "ERASE L", "", "UNDO End"});
  const DrawingState after = stateOf(host.app());
  EXPECT_FALSE(before == after);
  host.run({"U"});
  EXPECT_TRUE(before == stateOf(host.app()));
  host.run({"REDO"});
  EXPECT_TRUE(after == stateOf(host.app()));
  host.run({"U", "U"});
  EXPECT_EQ(drawnLines(host.app()), "");
}

TEST(Walk, ViewsChangedInsideACommandStayWhenItIsUndone) {
  ScriptedHost host;
  const std::string printed = host.run({"LINE 0,0", "'ZOOM C 5,5 20", "'PAN 0,0 1,0", "3,3", ""});
  EXPECT_TRUE(host.good()) << printed;
  EXPECT_EQ(drawnLines(host.app()), "0,0>3,3");
  EXPECT_EQ(host.app().view().centerX, 4);
  host.run({"U"});
  EXPECT_EQ(drawnLines(host.app()), "");
  EXPECT_EQ(host.app().view().centerX, 4);
  host.run({"ZOOM P", "ZOOM P"});
  EXPECT_NE(host.app().view().centerX, 4);
}

}  // namespace
}  // namespace tarn::host
