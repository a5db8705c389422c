#include "host/filing/tagdocument.h"

#include <gtest/gtest.h>

#include <map>

#include "host/filing/binarydrawing.h"
#include "host/filing/drawingpieces.h"
#include "host/filing/encoding.h"
#include "host/filing/tageditor.h"
#include "tests/host_filing/realdrawings.h"

namespace tarn::host {
namespace {

TagDocument parsed(const std::string& bytes) {
  auto document = TagDocument::parse(bytes, "test.dxf");
  EXPECT_TRUE(document) << document.message();
  return document ? document.take() : TagDocument();
}

std::string message(const std::string& bytes) {
  const auto document = TagDocument::parse(bytes, "test.dxf");
  return document ? "" : document.message();
}

const std::string kLine = "  0\nLINE\n  5\n2A\n  8\n0\n 10\n40500123.456\n 20\n1.50\n 30\n0.0\n";

std::string withEntities(const std::string& entities, const std::string& header = "") {
  return "  0\nSECTION\n  2\nHEADER\n" + header + "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n" +
         entities + "  0\nENDSEC\n  0\nEOF\n";
}

TEST(TagDocument, eachRealFileIsReadOrRefusedWithItsLine) {
  const std::map<std::string, std::string> refused = {
      {"clusterfuzz-testcase-minimized-shape_fuzzer-6126814756995072.dxf", "line 1: "}};
  const std::vector<std::string> cutOff = {"recover01.dxf", "header_extended.dxf"};
  const std::vector<std::string> drawings = realDrawings();
  if (drawings.empty()) GTEST_SKIP() << "no real files at " TARN_DATA_DIR;
  for (const std::string& path : drawings) {
    SCOPED_TRACE(path);
    std::string bytes = bytesOf(path);
    if (isBinaryDrawing(bytes)) {
      auto ascii = asciiFromBinary(bytes, path);
      ASSERT_TRUE(ascii) << ascii.message();
      bytes = ascii.take();
    }
    const auto document = TagDocument::parse(bytes, path);
    const auto expected = refused.find(nameOf(path));
    if (expected != refused.end()) {
      ASSERT_FALSE(document);
      EXPECT_NE(document.message().find(expected->second), std::string::npos) << document.message();
      continue;
    }
    ASSERT_TRUE(document) << document.message();
    const TagDocument& d = document.value();
    const bool isCutOff = std::find(cutOff.begin(), cutOff.end(), nameOf(path)) != cutOff.end();
    EXPECT_EQ(d.isComplete(), !isCutOff);
    EXPECT_EQ(d.hasTrailingBytes(), nameOf(path) == "R12_with_trash_beyond_EOF.dxf");
    // The runs of all objects, one after the other, are the file.
    std::string again = d.bytes().substr(0, d.startOf(d.tagsOf(0).begin));
    for (std::uint32_t object = 0; object < d.objectCount(); ++object) {
      const TagEditor editor(d, TextEncoding(d), d.tagsOf(object));
      again += editor.bytes();
    }
    EXPECT_EQ(again, bytes.substr(0, d.startOf(static_cast<std::uint32_t>(d.tags().size()))));
  }
}

TEST(TagDocument, aBrokenFileIsNamedWithItsLine) {
  struct Case {
    std::string bytes;
    const char* message;
  };
  const Case cases[] = {
      {"", "test.dxf: this is no DXF drawing: there is no section in it."},
      {"0\nEOF\n", "test.dxf: this is no DXF drawing: there is no section in it."},
      {"0\nSECTION\n2\nENTITIES\nabc\n1\n",
       "test.dxf: line 5: \"abc\" stands where a group code is due."},
      {"0\nSECTION\n2\nENTITIES\n99999\n1\n",
       "test.dxf: line 5: \"99999\" stands where a group code is due."},
      {"0\nSECTION\n2\nENTITIES\n\x01\xff\n1\n",
       "test.dxf: line 5: \"??\" stands where a group code is due."},
  };
  for (const Case& c : cases) EXPECT_EQ(message(c.bytes), c.message);
}

TEST(TagDocument, aFileCutOffAnywhereGivesItsWholeTagsOrIsRefused) {
  const std::string whole = withEntities(kLine, "  9\n$ACADVER\n  1\nAC1015\n");
  for (size_t length = 0; length < whole.size(); ++length) {
    const auto document = TagDocument::parse(whole.substr(0, length), "cut.dxf");
    if (!document) continue;
    const bool isWhole = length + 1 >= whole.size();  // the last line end may be missing
    EXPECT_EQ(document.value().isComplete(), isWhole) << length;
  }
}

/// Whatever the pieces, the parts are whole objects and together the file.
TEST(TagDocument, isReadInPartsOfWholeObjects) {
  std::string entities;
  while (entities.size() < (3U << 20)) entities += kLine;
  // One that is longer than a part.
  entities += "  0\nMTEXT\n";
  for (int i = 0; i < 300000; ++i) entities += "  3\nlong\n";
  const std::string bytes =
      "999\ncomment\n" + withEntities(entities, "  9\n$ACADVER\n  1\nAC1015\n") + "behind the end";
  const TagDocument whole = parsed(bytes);
  const TextEncoding encoding;
  for (const size_t size : {size_t{1} << 30, size_t{1000003}, size_t{4099}}) {
    std::string together;
    size_t objects = 0;
    size_t parts = 0;
    const Status status = forEachPart(
        [&](const PieceTaker& take) {
          Status given;
          for (size_t at = 0; at < bytes.size() && given; at += size) {
            given = take(std::string_view(bytes).substr(at, size));
          }
          return given;
        },
        {whole, encoding},
        [&](const TagDocument& part) {
          EXPECT_TRUE(parts == 0 || part.tag(0).code == 0);
          EXPECT_EQ(part.version(), "AC1015");
          together += part.bytes();
          objects += part.objectCount();
          ++parts;
          return Status();
        });
    EXPECT_TRUE(status) << status.message();
    EXPECT_TRUE(together == bytes) << size;
    EXPECT_EQ(objects, whole.objectCount());
    EXPECT_GE(parts, 4U);
  }
}

TEST(TagDocument, handlesAndVariablesAreFound) {
  const TagDocument d = parsed(
      withEntities(kLine + "  0\nCIRCLE\n102\n{APP\n  5\nBAD\n102\n}\n  5\nFFFFFFFFFFFFFFF0\n",
                   "  9\n$ACADVER\n  1\nAC1015\n  9\n$EXTMIN\n 10\n1.0\n 20\n2.0\n"));
  EXPECT_EQ(d.version(), "AC1015");
  const TagRange extents = d.headerVariable("$EXTMIN");
  ASSERT_EQ(extents.end - extents.begin, 2U);
  EXPECT_EQ(d.word(d.tag(extents.begin + 1)), "2.0");
  EXPECT_EQ(d.headerVariable("$NONE").begin, d.headerVariable("$NONE").end);
  const DrawingSection* entities = d.section("ENTITIES");
  ASSERT_NE(entities, nullptr);
  EXPECT_EQ(d.handleOf(entities->firstObject + 1), 0x2AU);
  EXPECT_EQ(d.highestHandle(), 0xFFFFFFFFFFFFFFF0U);
  EXPECT_EQ(formatHandle(d.highestHandle()), "FFFFFFFFFFFFFFF0");
}

TEST(TagEditor, onlyWhatChangesIsWrittenAnew) {
  for (const bool returns : {false, true}) {
    std::string line = kLine + "999\nkept\n1001\nAPP\n1040\n1.0\n";
    std::string file = withEntities(line, "  9\n$ACADVER\n  1\nAC1015\n");
    if (returns) {
      line = replaceAll(line, "\n", "\r\n");
      file = replaceAll(file, "\n", "\r\n");
    }
    const TagDocument d = parsed(file);
    const TextEncoding encoding(d);
    TagEditor editor(d, encoding, d.tagsOf(d.section("ENTITIES")->firstObject + 1));
    editor.setText(8, L"0");
    editor.setReal(10, 40500123.456);
    editor.setReal(20, 1.5);
    editor.setReal(30, 0);
    editor.setReal(39, 0, 0);
    EXPECT_EQ(editor.bytes(), line) << "equal values keep their text";
    editor.setReal(20, 0.1 + 0.2);
    editor.setInteger(62, 3, 256);
    std::string expected =
        "  0\nLINE\n  5\n2A\n  8\n0\n 10\n40500123.456\n 20\n0.30000000000000004\n"
        " 62\n3\n 30\n0.0\n999\nkept\n1001\nAPP\n1040\n1.0\n";
    if (returns) expected = replaceAll(expected, "\n", "\r\n");
    EXPECT_EQ(editor.bytes(), expected);
  }
}

TEST(TextEncoding, textsComeBackInEachCodePage) {
  struct Case {
    const char* page;  // null: UTF-8
    const char* bytes;
    std::wstring text;
    bool isExact;  // the text is written in the same bytes
  };
  const Case cases[] = {
      {nullptr, "\xE6\xB5\x8B\xE9\x87\x8F", L"测量", true},
      {"ANSI_936", "\xB2\xE2\xC1\xBF", L"测量", true},
      // The second byte of this one is a backslash.
      {"ANSI_950", "\xA5\x5C", L"功", true},
      {"ANSI_1252",
       "Stra\xDF"
       "e",
       L"Straße", true},
      {"ANSI_1251", "\xEF\xEB\xE0\xED", L"план", true},
      {"dos850", "\x81", L"ü", true},
      {"ANSI_1252", "\\U+6D4B\\U+91CF", L"测量", true},
      {"ANSI_1252", "\\U+D83D\\U+DDFA", L"🗺", true},
      {"ANSI_1252", "\\M+5B2E2", L"测", false},
      {nullptr, "\\U+6D4B", L"测", false},
      {nullptr, "a^Jb^ c^I", L"a\nb^c\t", true},
      {nullptr, "C:\\Users\\U+ZZ", L"C:\\Users\\U+ZZ", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bytes);
    const TextEncoding encoding =
        c.page != nullptr ? TextEncoding::ofCodePage(c.page) : TextEncoding();
    EXPECT_EQ(encoding.decode(c.bytes), c.text);
    EXPECT_EQ(encoding.decode(encoding.encode(c.text)), c.text);
    if (c.isExact) {
      EXPECT_EQ(encoding.encode(c.text), c.bytes);
    }
  }
}

TEST(TextEncoding, theHeaderSaysWhichOne) {
  const auto encodingOf = [](const std::string& version, const std::string& page) {
    std::string header = "  9\n$ACADVER\n  1\n" + version + "\n";
    if (!page.empty()) header += "  9\n$DWGCODEPAGE\n  3\n" + page + "\n";
    return TextEncoding(parsed(withEntities(kLine, header)));
  };
  EXPECT_EQ(encodingOf("AC1018", "ANSI_936").decode("\xB2\xE2"), L"测");
  EXPECT_TRUE(encodingOf("AC1021", "ANSI_936").isUtf8());
  EXPECT_TRUE(encodingOf("AC1009", "").isUtf8());
}

TEST(BinaryDrawing, aCutOffOrForeignFileIsRefusedOrEndsEarly) {
  const std::string mark("AutoCAD Binary DXF\r\n\x1a\0", 22);
  const std::string section = mark + std::string("\0\0SECTION\0\2\0ENTITIES\0", 21);
  EXPECT_EQ(asciiFromBinary(section, "b.dxf").value(), "0\nSECTION\n2\nENTITIES\n");
  EXPECT_NE(asciiFromBinary(section + std::string("\x0a\x00\x01", 3), "b.dxf")
                .message()
                .find("b.dxf: byte"),
            std::string::npos);
  EXPECT_FALSE(asciiFromBinary(section + std::string("\x50\x00\x01", 3), "b.dxf"));
}

}  // namespace
}  // namespace tarn::host
