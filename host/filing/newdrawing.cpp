// An empty drawing: what every program expects to find in one.
#include "base/text.h"
#include "host/filing/drawingfile.h"

namespace tarn::host {

namespace {

// A tag a line: the code, a blank, the value. %VERSION% stands for the version.
constexpr char kHead[] = R"(0 SECTION
2 HEADER
9 $ACADVER
1 %VERSION%
9 $DWGCODEPAGE
3 ANSI_1252
9 $INSBASE
10 0.0
20 0.0
30 0.0
9 $LIMMIN
10 0.0
20 0.0
9 $LIMMAX
10 420.0
20 297.0
9 $LTSCALE
40 1.0
9 $TEXTSIZE
40 2.5
9 $TEXTSTYLE
7 Standard
9 $CLAYER
8 0
9 $CELTYPE
6 ByLayer
9 $CECOLOR
62 256
9 $HANDSEED
5 40
9 $TILEMODE
70 1
9 $MEASUREMENT
70 1
9 $INSUNITS
70 6
0 ENDSEC
0 SECTION
2 CLASSES
0 ENDSEC
)";

constexpr char kTables[] = R"(0 SECTION
2 TABLES
0 TABLE
2 VPORT
5 1
330 0
100 AcDbSymbolTable
70 1
0 VPORT
5 10
330 1
100 AcDbSymbolTableRecord
100 AcDbViewportTableRecord
2 *ACTIVE
70 0
10 0.0
20 0.0
11 1.0
21 1.0
12 0.0
22 0.0
13 0.0
23 0.0
14 1.0
24 1.0
15 1.0
25 1.0
16 0.0
26 0.0
36 1.0
17 0.0
27 0.0
37 0.0
40 1000.0
41 1.7777777777777777
42 50.0
43 0.0
44 0.0
50 0.0
51 0.0
71 0
72 100
73 1
74 3
75 0
76 0
77 0
78 0
0 ENDTAB
0 TABLE
2 LTYPE
5 2
330 0
100 AcDbSymbolTable
70 3
0 LTYPE
5 11
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 ByBlock
70 0
3
72 65
73 0
40 0.0
0 LTYPE
5 12
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 ByLayer
70 0
3
72 65
73 0
40 0.0
0 LTYPE
5 13
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 CONTINUOUS
70 0
3 Solid line
72 65
73 0
40 0.0
0 ENDTAB
0 TABLE
2 LAYER
5 3
330 0
100 AcDbSymbolTable
70 1
0 LAYER
5 14
330 3
100 AcDbSymbolTableRecord
100 AcDbLayerTableRecord
2 0
70 0
62 7
6 CONTINUOUS
370 -3
390 2F
0 ENDTAB
0 TABLE
2 STYLE
5 4
330 0
100 AcDbSymbolTable
70 1
0 STYLE
5 15
330 4
100 AcDbSymbolTableRecord
100 AcDbTextStyleTableRecord
2 Standard
70 0
40 0.0
41 1.0
50 0.0
71 0
42 2.5
3 txt
4
0 ENDTAB
0 TABLE
2 VIEW
5 5
330 0
100 AcDbSymbolTable
70 0
0 ENDTAB
0 TABLE
2 UCS
5 6
330 0
100 AcDbSymbolTable
70 0
0 ENDTAB
0 TABLE
2 APPID
5 7
330 0
100 AcDbSymbolTable
70 1
0 APPID
5 16
330 7
100 AcDbSymbolTableRecord
100 AcDbRegAppTableRecord
2 ACAD
70 0
0 ENDTAB
0 TABLE
2 DIMSTYLE
5 8
330 0
100 AcDbSymbolTable
70 1
100 AcDbDimStyleTable
71 1
0 DIMSTYLE
105 17
330 8
100 AcDbSymbolTableRecord
100 AcDbDimStyleTableRecord
2 Standard
70 0
0 ENDTAB
0 TABLE
2 BLOCK_RECORD
5 9
330 0
100 AcDbSymbolTable
70 2
0 BLOCK_RECORD
5 18
330 9
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Model_Space
340 22
0 BLOCK_RECORD
5 19
330 9
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Paper_Space
340 23
0 ENDTAB
0 ENDSEC
)";

constexpr char kBlocks[] = R"(0 SECTION
2 BLOCKS
0 BLOCK
5 1A
330 18
100 AcDbEntity
8 0
100 AcDbBlockBegin
2 *Model_Space
70 0
10 0.0
20 0.0
30 0.0
3 *Model_Space
1
0 ENDBLK
5 1B
330 18
100 AcDbEntity
8 0
100 AcDbBlockEnd
0 BLOCK
5 1C
330 19
100 AcDbEntity
67 1
8 0
100 AcDbBlockBegin
2 *Paper_Space
70 0
10 0.0
20 0.0
30 0.0
3 *Paper_Space
1
0 ENDBLK
5 1D
330 19
100 AcDbEntity
67 1
8 0
100 AcDbBlockEnd
0 ENDSEC
0 SECTION
2 ENTITIES
0 ENDSEC
)";

constexpr char kObjects[] = R"(0 SECTION
2 OBJECTS
0 DICTIONARY
5 A
330 0
100 AcDbDictionary
281 1
3 ACAD_GROUP
350 20
3 ACAD_LAYOUT
350 21
3 ACAD_MLINESTYLE
350 24
3 ACAD_PLOTSETTINGS
350 26
3 ACAD_PLOTSTYLENAME
350 2E
0 DICTIONARY
5 20
330 A
100 AcDbDictionary
281 1
0 DICTIONARY
5 21
330 A
100 AcDbDictionary
281 1
3 Layout1
350 23
3 Model
350 22
0 DICTIONARY
5 24
330 A
100 AcDbDictionary
281 1
3 STANDARD
350 25
0 MLINESTYLE
5 25
330 24
100 AcDbMlineStyle
2 STANDARD
70 0
3
62 256
51 90.0
52 90.0
71 2
49 0.5
62 256
6 BYLAYER
49 -0.5
62 256
6 BYLAYER
0 DICTIONARY
5 26
330 A
100 AcDbDictionary
281 1
0 ACDBDICTIONARYWDFLT
5 2E
330 A
100 AcDbDictionary
281 1
3 Normal
350 2F
100 AcDbDictionaryWithDefault
340 2F
0 ACDBPLACEHOLDER
5 2F
330 2E
)";

constexpr char kLayout[] = R"(0 LAYOUT
5 %HANDLE%
330 21
100 AcDbPlotSettings
1
2
4 A3
6
40 5.0
41 5.0
42 5.0
43 5.0
44 420.0
45 297.0
46 0.0
47 0.0
48 0.0
49 0.0
140 0.0
141 0.0
142 1.0
143 1.0
70 %FLAGS%
72 1
73 0
74 %TYPE%
7
75 %SCALE%
147 1.0
148 0.0
149 0.0
100 AcDbLayout
1 %NAME%
70 1
71 %ORDER%
10 0.0
20 0.0
11 420.0
21 297.0
12 0.0
22 0.0
32 0.0
14 0.0
24 0.0
34 0.0
15 420.0
25 297.0
35 0.0
146 0.0
13 0.0
23 0.0
33 0.0
16 1.0
26 0.0
36 0.0
17 0.0
27 1.0
37 0.0
76 0
330 %BLOCK%
)";

constexpr char kTail[] = "0 ENDSEC\n0 EOF\n";

struct LayoutText {
  const char* mark;
  const char* text;
};
/// The model is plotted as it is displayed, fitted and centred.
constexpr LayoutText kModelTexts[] = {
    {"%HANDLE%", "22"}, {"%NAME%", "Model"}, {"%ORDER%", "0"},  {"%FLAGS%", "1716"},
    {"%TYPE%", "0"},    {"%SCALE%", "0"},    {"%BLOCK%", "18"},
};
constexpr LayoutText kSheetTexts[] = {
    {"%HANDLE%", "23"}, {"%NAME%", "Layout1"}, {"%ORDER%", "1"},  {"%FLAGS%", "688"},
    {"%TYPE%", "5"},    {"%SCALE%", "16"},     {"%BLOCK%", "19"},
};

template <size_t kCount>
std::string layout(const LayoutText (&texts)[kCount]) {
  std::string text = kLayout;
  for (const LayoutText& one : texts) text = replaceAll(std::move(text), one.mark, one.text);
  return text;
}

}  // namespace

std::string newDrawingBytes(std::string_view version) {
  const std::string text = replaceAll(kHead, "%VERSION%", version) + kTables + kBlocks + kObjects +
                           layout(kModelTexts) + layout(kSheetTexts) + kTail;
  std::string out;
  for (const std::string& line : split(text, '\n')) {
    if (line.empty()) continue;
    const size_t blank = line.find(' ');
    const std::string code = line.substr(0, blank);
    if (code.size() < 3) out.append(3 - code.size(), ' ');
    out += code + "\n" + (blank != std::string::npos ? line.substr(blank + 1) : "") + "\n";
  }
  return out;
}

}  // namespace tarn::host
