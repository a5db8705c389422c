// Every message of the panel, sent by script; list, stored record, output and calls afterwards.
#include <algorithm>

#include "_image/imagedockbar.h"
#include "_image/imagepanelids.h"
#include "afxwin.h"
#include "host/editor/namedrecords.h"
#include "host/ui/menumodel.h"
#include "host/ui/windowinput.h"
#include "inc/iconfigmanager.h"
#include "rxmfcapi.h"
#include "tests/image_entity/fixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kRoot = "影像列表";
constexpr const char* kA = "/im/a.tif";
constexpr const char* kB = "/im/b 影像.tif";
constexpr const char* kC = "/im/c.tif";

class Panel : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    host_->run("OpenImageList");
  }

  /// UICLICK 1131 with what is typed at its prompts.
  std::string click(const std::string& action, std::vector<std::string> inputs = {}) {
    host_->frontEnd.answers.clear();
    for (const std::string& input : inputs) host_->frontEnd.answers.emplace_back(input);
    return host_->run("UICLICK 1131 " + action);
  }
  std::string command(unsigned id) { return click("COmmand " + std::to_string(id)); }
  std::string tree() { return afterPrompts(click("List 119")); }
  std::string list() { return afterPrompts(click("List 1132")); }
  static std::string afterPrompts(const std::string& text) {
    const size_t at = text.find("\n[");
    return at == std::string::npos ? "" : text.substr(at + 1);
  }
  std::vector<std::string> stored() {
    return tarn::host::namedStrings(*host_->app, "ImagePath", "ImagePath");
  }
  std::vector<std::string> order() {
    std::vector<std::string> paths;
    for (const CDocData::Image& image : record().images()) {
      paths.push_back((image.isDisplayed ? "" : "-") + tarn::toUtf8(image.path));
    }
    return paths;
  }
  void addImages(const std::vector<std::string>& paths) {
    host_->ui.files = {paths};
    command(tarn::image::ID_ADD_IMAGE);
  }
  static std::vector<std::string> calls(const std::string& beginning) {
    std::vector<std::string> found;
    for (const std::string& call : tarn::test::script().calls) {
      if (call.compare(0, beginning.size(), beginning) == 0) found.push_back(call);
    }
    return found;
  }
  std::string pyramidSetting() {
    return kel::Object<IConfigManager>("N", "test", 1)->getValue("CreateImgx").toString().str();
  }
};

TEST_F(Panel, StartsWithTheRootCheckedAndTheImagesOfTheDrawing) {
  EXPECT_EQ(tree(), "[x] 影像列表\n");
  tarn::image::destroyImagePanel();
  add(L"/im/a.tif");
  add(L"/im/c.tif");
  record().setDisplayed(L"/im/a.tif", false);
  host_->run("_List");
  EXPECT_EQ(tree(), "[x] 影像列表\n  [x] /im/c.tif\n  [ ] /im/a.tif\n");
  EXPECT_EQ(list(), "[ ] /im/a.tif\n[x] /im/c.tif\n");
}

TEST_F(Panel, AddsWhatIsChosenAndSkipsWhatIsListed) {
  addImages({kC, kA});
  host_->ui.files = {{kA, kB}};
  const std::string printed = command(tarn::image::ID_ADD_IMAGE);
  EXPECT_THAT(printed, HasSubstr("\n该影像已经存在当前里列表中，不允许重复加载"));
  EXPECT_THAT(printed, HasSubstr("\nCommand: regen"));
  EXPECT_THAT(stored(), ElementsAre(kC, kA, kB));
  EXPECT_EQ(tree(), "[x] 影像列表\n  [x] /im/c.tif\n  [x] /im/a.tif\n  [x] /im/b 影像.tif\n");
  const tarn::host::FileRequest& request = host_->ui.requests.back();
  EXPECT_TRUE(request.several);
  EXPECT_EQ(request.defaultExtension, "*.tif");
  EXPECT_EQ(request.filter, "tif文件(*.tif)|*.tif|img文件(*.img)|*.img|jpg文件(*.jpg)|*.jpg||");
  // One that cannot be opened; those after it still come.
  tarn::test::script().goodInits = 0;
  EXPECT_THAT(click("DRop", {"/im/x.tif", ""}), HasSubstr("\nimagedivision init fail!"));
  tarn::test::script().goodInits = 100;
  click("DRop", {"/im/y.tif", ""});
  EXPECT_THAT(stored(), ElementsAre(kC, kA, kB, "/im/y.tif"));
}

TEST_F(Panel, CheckBoxesShowAndHideAtOnce) {
  addImages({kA, kB, kC});
  const struct {
    const char* item;
    std::vector<std::string> images;
  } cases[] = {
      {kB, {kA, std::string("-") + kB, kC}},
      {kRoot, {std::string("-") + kA, std::string("-") + kB, std::string("-") + kC}},
      {kC, {std::string("-") + kA, std::string("-") + kB, kC}},
      {kRoot, {kA, kB, kC}},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.item);
    EXPECT_THAT(click("CHeck 119", {one.item}), HasSubstr("\nCommand: regen"));
    EXPECT_EQ(order(), one.images);
    std::string expected = order() == one.images ? tree() : "";
    for (const std::string& image : one.images) {
      const bool hidden = image[0] == '-';
      EXPECT_THAT(expected, HasSubstr((hidden ? "[ ] " : "[x] ") + image.substr(hidden ? 1 : 0)));
    }
  }
  // A click beside the box changes nothing.
  EXPECT_THAT(click("Click 119", {kA}), Not(HasSubstr("regen")));
}

TEST_F(Panel, MovesTextsAndLeavesTheBoxes) {
  addImages({kA, kB, kC});
  click("CHeck 119", {kB});
  click("Click 119", {kC});
  EXPECT_THAT(command(tarn::image::ID_MOVE_UP), HasSubstr("\nCommand: regen"));
  EXPECT_EQ(tree(), "[x] 影像列表\n  [x] /im/a.tif\n  [ ] /im/c.tif *\n  [x] /im/b 影像.tif\n");
  EXPECT_THAT(stored(), ElementsAre(kA, kC, kB));
  EXPECT_THAT(order(), ElementsAre(kA, kC, std::string("-") + kB)) << "what is shown stays";
  command(tarn::image::ID_MOVE_UP);
  EXPECT_THAT(stored(), ElementsAre(kC, kA, kB));
  for (const char* item : {kC, kRoot}) {
    click("Click 119", {item});
    EXPECT_THAT(command(tarn::image::ID_MOVE_UP), Not(HasSubstr("regen"))) << item;
  }
  click("Click 119", {kB});
  EXPECT_THAT(command(tarn::image::ID_MOVE_DOWN), Not(HasSubstr("regen")));
  EXPECT_THAT(stored(), ElementsAre(kC, kA, kB));
}

TEST_F(Panel, RemovesOneOrSeveralOrAll) {
  addImages({kA, kB, kC});
  EXPECT_THAT(command(tarn::image::ID_REMOVE_IMAGE), Not(HasSubstr("regen"))) << "none selected";
  click("Click 119", {kRoot});
  EXPECT_THAT(command(tarn::image::ID_REMOVE_IMAGE), Not(HasSubstr("regen")));
  EXPECT_THAT(stored(), ElementsAre(kA, kB, kC)) << "written back";
  click("Click 119", {kB});
  EXPECT_THAT(command(tarn::image::ID_REMOVE_IMAGE),
              HasSubstr(std::string("\n") + kB + "的影像已被删除!"));
  EXPECT_THAT(stored(), ElementsAre(kA, kC));
  {
    const OpenedImage image(record(), AcDb::kForWrite);
    image->releaseImage(L"/im/c.tif");
  }
  click("Click 119", {kC});
  EXPECT_THAT(command(tarn::image::ID_REMOVE_IMAGE), HasSubstr("\ndelete image fail"));
  EXPECT_THAT(stored(), ElementsAre(kA, kC)) << "nothing is lost";
  EXPECT_EQ(tree(), "[x] 影像列表\n  [x] /im/a.tif\n  [x] /im/c.tif *\n");

  addImages({kB, "/im/d.tif"});
  click("Click 119", {kA});
  click("Add 119", {"/im/d.tif"});
  command(tarn::image::ID_REMOVE_IMAGE);
  EXPECT_THAT(stored(), ElementsAre(kC, kB));
  const std::string printed = command(tarn::image::ID_REMOVE_ALL);
  EXPECT_LT(printed.find("\nCommand: EraseInvalidImage"), printed.find("\nCommand: regen"));
  EXPECT_EQ(tree(), "[x] 影像列表\n");
  EXPECT_TRUE(stored().empty());
  EXPECT_TRUE(record().residentImage().isNull());
  host_->run("UNDO 2");
  EXPECT_FALSE(record().residentImage().isNull());
}

TEST_F(Panel, MenusOfRootImageAndEmptySpace) {
  EXPECT_THAT(click("Right 119", {kRoot, ""}),
              HasSubstr("\n  1121 添加影像\n  1122 删除所有影像\n  1128 √ 生成金字塔\nMenu"));
  EXPECT_THAT(click("Right 119", {""}), Not(HasSubstr("Menu command")));
  addImages({kA, kB});
  const std::string chinese =
      "\n  1121 添加影像\n  1123 纠正影像\n  1124 抗锯齿\n  拉伸方式\n    1126 均衡化\n"
      "    1127 标准偏差\n    32780 √ 恢复\n  1120 删除影像\n  1122 删除所有影像\n  32784 上移\n"
      "  32785 下移\nMenu";
  EXPECT_THAT(click("Right 119", {kA, ""}), HasSubstr(chinese));
  host_->run("SETVAR LOCALE ENU");
  const std::string english = click("Right 119", {kA, ""});
  for (const char* text :
       {"1121 Add image\n", "1123 Rectify image\n", "1124 Anti aliasing\n", "Stretching method\n",
        "1126 Equalization\n", "1127 Standard deviation\n", "32780 √ Restore\n",
        "1120 Remove image\n", "1122 Remove all images\n"}) {
    EXPECT_THAT(english, HasSubstr(text));
  }
  EXPECT_THAT(english, Not(HasSubstr("32784")));
  host_->run("SETVAR LOCALE CHS");
  click("Click 119", {kA});
  click("Add 119", {kB});
  EXPECT_THAT(click("Right 119", {kB, std::to_string(tarn::image::ID_HIDE_CHOSEN)}),
              HasSubstr("隐藏所选影像"));
  EXPECT_THAT(order(), ElementsAre(std::string("-") + kA, std::string("-") + kB));
  // The bar's menu goes without two of its items.
  const std::string bar = click("BAr", {""});
  EXPECT_THAT(bar, HasSubstr("4096"));
  for (const char* item : {"4097", "4098"}) EXPECT_THAT(bar, Not(HasSubstr(item)));
}

TEST_F(Panel, AntiAliasesAllAndStretchesOne) {
  addImages({kA, kB});
  click("Click 119", {kA});
  EXPECT_THAT(command(tarn::image::ID_ANTI_ALIASING), HasSubstr("\nCommand: regen"));
  EXPECT_THAT(calls("setAntiAliasing"),
              ElementsAre("setAntiAliasing /im/a.tif 1", "setAntiAliasing /im/b 影像.tif 1"));
  EXPECT_THAT(click("Right 119", {kB, ""}), HasSubstr("1124 √ 抗锯齿"));
  const struct {
    unsigned id;
    const char* mode;
    const char* marked;
  } stretches[] = {{tarn::image::ID_STRETCH_EQUALISE, "1", "1126 √"},
                   {tarn::image::ID_STRETCH_DEVIATION, "2", "1127 √"},
                   {tarn::image::ID_STRETCH_NONE, "-1", "32780 √"}};
  for (const auto& one : stretches) {
    tarn::test::script().calls.clear();
    EXPECT_THAT(command(one.id), HasSubstr("\nCommand: regen"));
    EXPECT_THAT(calls("setStretch"),
                ElementsAre(std::string("setStretchMode ") + kB + " " + one.mode));
    EXPECT_THAT(click("Right 119", {kB, ""}), HasSubstr(one.marked));
  }
  click("Click 119", {kRoot});
  EXPECT_THAT(command(tarn::image::ID_STRETCH_EQUALISE), Not(HasSubstr("regen")));
  tarn::test::script().calls.clear();
  command(tarn::image::ID_ANTI_ALIASING);
  EXPECT_EQ(calls("setAntiAliasing").size(), 2U);
  EXPECT_THAT(calls("setAntiAliasing")[0], HasSubstr(" 0"));
}

TEST_F(Panel, PyramidMarkIsExactAndWritten) {
  kel::Object<IConfigManager> config("N", "test", 1);
  for (const char* value : {"", "true", "False", "nonsense"}) {
    config->setValue("CreateImgx", value);
    EXPECT_THAT(click("Right 119", {kRoot, ""}), HasSubstr("1128 √")) << value;
  }
  config->setValue("CreateImgx", "false");
  EXPECT_THAT(click("Right 119", {kRoot, "1128"}), HasSubstr("1128 生成金字塔"));
  EXPECT_EQ(pyramidSetting(), "true");
  command(tarn::image::ID_GENERATE_PYRAMID);
  EXPECT_EQ(pyramidSetting(), "false");
}

TEST_F(Panel, HiddenListAndButtons) {
  host_->ui.files = {{kB, kA}};
  command(tarn::image::IDC_LIST_ADD);
  EXPECT_EQ(list(), "[x] /im/a.tif\n[x] /im/b 影像.tif\n") << "sorted";
  click("CHeck 1132", {kA});
  command(tarn::image::IDC_LIST_INVERT);
  EXPECT_EQ(list(), "[x] /im/a.tif\n[ ] /im/b 影像.tif\n");
  EXPECT_THAT(command(tarn::image::IDC_PANEL_OK), HasSubstr("\nCommand: regen"));
  EXPECT_THAT(order(), ElementsAre(std::string("-") + kB, kA));
  command(tarn::image::IDC_LIST_ALL);
  EXPECT_EQ(list(), "[x] /im/a.tif\n[x] /im/b 影像.tif\n");
  EXPECT_THAT(click("Right 1132", {kA, ""}), HasSubstr("  1120 删除影像\n"));
  EXPECT_THAT(click("Right 1132", {"", ""}), HasSubstr("  1120 添加影像\n"));
  const double before = host_->app->view().height;
  EXPECT_THAT(click("Double 1132", {kA}), HasSubstr("Corner of window"));
  EXPECT_NE(host_->app->view().height, before);
  EXPECT_NEAR(host_->app->view().centerX, 350, 1e-9);
  EXPECT_NEAR(host_->app->view().centerY, 75, 1e-9);
  EXPECT_THAT(command(tarn::image::IDC_LIST_DELETE),
              HasSubstr(std::string("\n") + kA + "的影像已被删除!"));
  EXPECT_THAT(stored(), ElementsAre(kB));
  {
    const OpenedImage image(record(), AcDb::kForWrite);
    image->releaseImage(tarn::toWide(kB));
  }
  record().setDisplayed(tarn::toWide(kB), true);
  command(tarn::image::IDC_LIST_ALL);
  EXPECT_THAT(command(tarn::image::IDC_LIST_DELETE), HasSubstr("\n删除影像失败!"));
  EXPECT_THAT(stored(), ElementsAre(kB));
}

TEST_F(Panel, RegenIsSentAndTheKeyboardGoesToTheCommandLine) {
  addImages({kA});
  const int before = host_->frontEnd.focused;
  click("CHeck 119", {kA});
  EXPECT_EQ(host_->frontEnd.focused, before + 1);
  EXPECT_THAT(click("Key 13"), HasSubstr("has taken"));
  EXPECT_THAT(click("Key 27"), HasSubstr("has taken"));
  EXPECT_THAT(click("Key 65"), HasSubstr("goes on"));
}

TEST_F(Panel, TheBarIsMadeOnceAndTheTreeFillsIt) {
  CWnd* dialog = tarn::host::dialogOf(1131);
  ASSERT_NE(dialog, nullptr);
  CWnd* bar = dialog->GetParent();
  CString title;
  bar->GetWindowText(title);
  EXPECT_EQ(title, ACRX_T("影像控制"));
  EXPECT_EQ(bar->GetStyle(), 0x52000000U);
  CRect rect;
  bar->GetClientRect(&rect);
  EXPECT_EQ(rect.Width(), 250);
  EXPECT_EQ(rect.Height(), 200);
  CRect inside;
  dialog->GetWindowRect(&inside);
  EXPECT_EQ(inside.top, 2);
  EXPECT_EQ(inside.Height(), 200);
  CRect tree;
  CWnd* control = dialog->GetDlgItem(119);
  control->GetWindowRect(&tree);
  EXPECT_EQ(tree.Width(), 250);
  EXPECT_EQ(control->GetStyle() & 0xFFFFU,
            static_cast<DWORD>(TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_CHECKBOXES |
                               TVS_SINGLEEXPAND | TVS_INFOTIP));
  const struct {
    int id;
    const ACHAR* caption;
  } hidden[] = {{1, L"确定"},   {1132, L""},    {1133, L"添加"},
                {106, L"删除"}, {110, L"全选"}, {1135, L"反选"}};
  EXPECT_TRUE(control->IsWindowVisible());
  for (const auto& one : hidden) {
    CWnd* window = dialog->GetDlgItem(one.id);
    ASSERT_NE(window, nullptr) << one.id;
    EXPECT_FALSE(window->IsWindowVisible()) << one.id;
    window->GetWindowText(title);
    EXPECT_EQ(title, one.caption);
    const bool isButton = one.id != 1132;
    EXPECT_EQ(isButton && (window->GetStyle() & BS_DEFPUSHBUTTON) != 0, one.id == 1) << one.id;
  }
  click("CLose");
  EXPECT_FALSE(bar->IsWindowVisible());
  host_->run("OpenImageList");
  EXPECT_TRUE(bar->IsWindowVisible());
  EXPECT_EQ(tarn::host::dialogOf(1131), dialog);
}

TEST_F(Panel, FollowsTheDrawingThatIsCurrent) {
  addImages({kA});
  host_->run("NEW");
  EXPECT_EQ(tree(), "[x] 影像列表\n");
  addImages({kB});
  EXPECT_EQ(tree(), std::string("[x] 影像列表\n  [x] ") + kB + "\n");
  g_dataMap->documentToBeDestroyed(document());
  const std::string printed = command(tarn::image::ID_ADD_IMAGE);
  EXPECT_THAT(printed, HasSubstr("当前文档没有加载到 g_dataMap 中！"));
}

TEST_F(Panel, EmptyPathsAreStoredAsNull) {
  const std::wstring empty;
  EXPECT_TRUE(tarn::image::storeImagePaths(document(), record(), {empty, L"/im/a.tif"}));
  EXPECT_THAT(stored(), ElementsAre("NULL", kA));
  EXPECT_THAT(tarn::image::storedImagePaths(record()), ElementsAre(empty, L"/im/a.tif"));
}

TEST_F(Panel, UiclickSaysWhatIsNotThere) {
  const struct {
    const char* line;
    const char* reason;
  } cases[] = {
      {"UICLICK 7 Click 119 x", "7: this dialog is not open."},
      {"UICLICK x", "\"x\": a number is needed."},
      {"UICLICK 1131 Jump", "\"Jump\" is no action."},
      {"UICLICK 1131 Click 5 x", "5: there is no such control."},
      {"UICLICK 1131 Click 119 nothing", "\"nothing\": there is no such item."},
      {"UICLICK 1131 Double 1132 nothing", "\"nothing\": there is no such item."},
      {"UICLICK 1131 Click 1133 nothing", "\"nothing\": there is no such item."},
  };
  for (const auto& one : cases) {
    const int failed = host_->app->failedCommands();
    EXPECT_THAT(host_->run(one.line), HasSubstr(one.reason));
    EXPECT_EQ(host_->app->failedCommands(), failed + 1) << one.line;
  }
  addImages({kA});
  EXPECT_THAT(click("Right 119", {kA, "5", "1124"}), HasSubstr("5: this is not in the menu."));
}

}  // namespace
