// Texts of one line and of several.
#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "dbtext.h"
#include "host/filing/codecs_texts.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

/// Longer texts stand in pieces of this many characters.
constexpr size_t kPiece = 250;

/// Of a text that names none.
constexpr std::wstring_view kUsualStyle = L"Standard";

AcDbObjectId styleOf(const DrawingBinding& binding, const TagView& tags) {
  const std::wstring name = tags.text(7);
  return binding.styleOf(name.empty() ? std::wstring(kUsualStyle) : name);
}

void writeStyle(AcDbObjectId style, TagEditor& editor) {
  const std::wstring name = recordName(style);
  const bool isUsual = equalsIgnoreCase(std::wstring_view(name), kUsualStyle);
  std::optional<std::wstring_view> standard;
  if (isUsual) standard = name;
  if (!name.empty()) editor.setName(7, name, standard);
}

AcDbEntity* readText(const EntityTags& tags) {
  auto* text = new AcDbText;
  text->setLine(readTextLine(tags.binding, tags.head));
  return text;
}

void writeText(const AcDbEntity& entity, EntityOutput& output) {
  writeTextLine(static_cast<const AcDbText&>(entity).line(), output.head, "AcDbText", 73);
}

/// The pieces of code 3 and the end of code 1, before the part that later versions append.
std::wstring contentsOf(const TagView& tags) {
  std::string bytes;
  tags.forEach([&](const Tag& tag) {
    if (tag.code == 3 || tag.code == 1) bytes += tags.document().text(tag);
  });
  return tags.encoding().decode(bytes);
}

AcGeVector3d directionOf(const TagView& tags) {
  const AcGeVector3d direction(tags.real(11), tags.real(21), tags.real(31));
  if (tags.has(11) && direction.length() > 0) return direction;
  // In degrees, whatever is written about it.
  const double angle = tags.angle(50);
  return {std::cos(angle), std::sin(angle), 0};
}

AcDbMTextColumns readColumns(const TagView& tags) {
  constexpr int kMost = 1000;
  AcDbMTextColumns columns;
  if (tags.integer(71) == 0) return columns;
  columns.width = tags.real(44);
  columns.gap = tags.real(45);
  columns.height = tags.real(41);
  tags.forEach([&](const Tag& tag) {
    if (tag.code == 46) columns.heights.push_back(tags.realOf(tag));
  });
  int count = tags.integer(72);
  const double pace = columns.width + columns.gap;
  if (count == 0 && pace > 0) {
    count = static_cast<int>(std::min((tags.real(42) + columns.gap) / pace + 0.5, 1.0 * kMost));
  }
  columns.count = static_cast<short>(std::max(0, std::min(count, kMost)));
  return columns;
}

/// Lengths go with the height of the letters, so that columns stay as they were made.
void writeEmbedded(const AcDbMText& text, EntityOutput& output) {
  TagEditor& head = output.head;
  if (output.old == nullptr || !head.enterEmbedded()) return;
  const AcGeVector3d along = text.direction();
  if (head.count(10) > 0) head.setPoint(10, {along.x, along.y, along.z});
  if (head.count(11) > 0) head.setPoint(11, text.location());
  const double before = output.old->head.real(40, 1);
  const double scale = before > 0 ? text.textHeight() / before : 1;
  if (scale == 1) return;
  const TagView old = output.old->head.embedded();
  for (const int code : {40, 41, 42, 43, 44, 45}) {
    if (old.has(code)) head.setReal(code, old.real(code) * scale);
  }
  for (const double height : text.columns().heights) {
    if (head.nextRun(46)) head.setReal(46, height);
  }
}

AcDbEntity* readMText(const EntityTags& tags) {
  auto* text = new AcDbMText;
  const TagView& head = tags.head;
  text->setLocation(head.point(10));
  text->setNormal(head.normal());
  text->setDirection(directionOf(head));
  text->setTextHeight(head.real(40, 1));
  const int attachment = head.integer(71, 1);
  text->setAttachment(attachment >= 1 && attachment <= 9 ? static_cast<short>(attachment)
                                                         : short{1});
  text->setLineSpacingFactor(head.real(44, 1));
  text->setWidth(head.real(41));
  text->setTextStyle(styleOf(tags.binding, head));
  text->setContents(contentsOf(head).c_str());
  text->setColumns(readColumns(head.embedded()));
  return text;
}

void writeContents(const std::wstring& contents, EntityOutput& output) {
  if (output.old != nullptr && contentsOf(output.old->head) == contents) return;
  output.head.remove({1, 3});
  size_t at = 0;
  for (; contents.size() - at > kPiece; at += kPiece) {
    output.head.addText(3, std::wstring_view(contents).substr(at, kPiece));
  }
  output.head.addText(1, std::wstring_view(contents).substr(at));
}

void writeMText(const AcDbEntity& entity, EntityOutput& output) {
  const auto& text = static_cast<const AcDbMText&>(entity);
  TagEditor& head = output.head;
  head.setPoint(10, text.location());
  head.setReal(40, text.textHeight());
  head.setReal(41, text.width(), 0);
  head.setIntegerUnless(71, text.attachment(), 1, [&](long long value) {
    return value == text.attachment() || (text.attachment() == 1 && (value < 1 || value > 9));
  });
  writeContents(text.contents(), output);
  writeStyle(text.textStyle(), head);
  head.setNormal(text.normal());
  const AcGeVector3d now = text.direction();
  const AcGeVector3d before =
      output.old != nullptr ? directionOf(output.old->head) : AcGeVector3d::kXAxis;
  if (now.x != before.x || now.y != before.y || now.z != before.z) {
    head.setPoint(11, {now.x, now.y, now.z});
    head.remove({50});
  }
  head.setReal(44, text.lineSpacingFactor(), 1);
  writeEmbedded(text, output);
}

}  // namespace

AcDbTextLine readTextLine(const DrawingBinding& binding, const TagView& tags) {
  AcDbTextLine line;
  line.position = tags.point(10);
  line.alignment = tags.has(11) ? tags.point(11) : line.position;
  line.normal = tags.normal();
  line.height = tags.real(40, 1);
  line.rotation = tags.angle(50);
  line.widthFactor = tags.real(41, 1);
  line.oblique = tags.angle(51);
  line.horizontal = static_cast<short>(tags.integer(72));
  line.vertical = static_cast<short>(tags.integer(verticalCodeOf(tags)));
  line.generation = static_cast<short>(tags.integer(71));
  line.style = styleOf(binding, tags);
  line.text = tags.text(1);
  return line;
}

int verticalCodeOf(const TagView& tags) {
  return tags.type() == "ATTRIB" ? 74 : 73;
}

void writeTextLine(const AcDbTextLine& line, TagEditor& editor, const char* lastMark,
                   int verticalCode) {
  editor.setPoint(10, line.position);
  editor.setReal(40, line.height);
  editor.setText(1, line.text);
  editor.setAngle(50, line.rotation, 0);
  writeStyle(line.style, editor);
  editor.setReal(41, line.widthFactor, 1);
  editor.setAngle(51, line.oblique, 0);
  editor.setInteger(71, line.generation, 0);
  editor.setInteger(72, line.horizontal, 0);
  if (line.horizontal != 0 || line.vertical != 0 || editor.has(11)) {
    editor.setPoint(11, line.alignment);
  }
  editor.setNormal(line.normal);
  if (!editor.has(verticalCode)) editor.enterLast(lastMark);
  editor.setInteger(verticalCode, line.vertical, 0);
}

const std::vector<EntityCodec>& textCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"TEXT", "AcDbText", &AcDbText::desc, readText, writeText, true, true, false, true},
      {"MTEXT", "AcDbMText", &AcDbMText::desc, readMText, writeMText, false, true},
  };
  return codecs;
}

}  // namespace tarn::host
