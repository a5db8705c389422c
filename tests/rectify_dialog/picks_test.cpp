// Picking in the drawing: prompts, what a cancelled prompt leaves, the dialog hidden meanwhile.
#include <QApplication>
#include <QLineEdit>

#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;

using Answers = std::deque<std::optional<std::string>>;

class Picks : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    add(makeImage("a.tif", {{50, 50}}));
    ASSERT_NE(open(), nullptr);
    host_->printed();
  }
  /// Presses the button while the answers stand ready; what was printed meanwhile.
  std::string pick(const char* button, Answers answers) {
    host_->frontEnd.answers = std::move(answers);
    host_->ui.boxes.clear();
    press(button);
    EXPECT_TRUE(dialog().isVisible());
    return host_->printed();
  }
  std::string text(const char* edit) { return find<QLineEdit>(edit).text().toStdString(); }
};

TEST_F(Picks, FillSourceAndTarget) {
  EXPECT_EQ(pick("pickOld", {"40500123.45678912,3.5"}), "拾取点\n");
  EXPECT_EQ(text("oldEast"), "40500123.456789");
  EXPECT_EQ(text("oldNorth"), "3.500000");
  EXPECT_EQ(pick("pickNew", {"1,-2"}), "拾取点\n");
  EXPECT_EQ(text("newEast"), "1.000000");
  EXPECT_EQ(text("newNorth"), "-2.000000");
  pick("pickOld", {std::nullopt});
  pick("pickNew", {""});
  EXPECT_EQ(text("oldEast"), "40500123.456789");
  EXPECT_EQ(text("newNorth"), "-2.000000");
}

TEST_F(Picks, OfAMoveNeedBothPoints) {
  choose("radioButton_moveImgage");
  EXPECT_EQ(pick("pushButton_MovePoint", {"10,20", "13.5,18"}), "\n拾取点:\n拾取点:\n");
  EXPECT_THAT(host_->ui.boxes, ElementsAre("请选择平移基点", "请选择平移到的点"));
  EXPECT_EQ(text("lineEdit_X_move"), "3.500000");
  EXPECT_EQ(text("lineEdit_Y_move"), "-2.000000");
  for (const Answers& answers :
       {Answers{"1,1", std::nullopt}, Answers{std::nullopt, "1,1"}, Answers{"", ""}}) {
    EXPECT_EQ(pick("pushButton_MovePoint", answers), "\n拾取点:\n拾取点:\n");
    EXPECT_EQ(host_->ui.boxes.size(), 2U);
    EXPECT_EQ(text("lineEdit_X_move"), "3.500000");
    EXPECT_EQ(text("lineEdit_Y_move"), "-2.000000");
  }
}

TEST_F(Picks, OfBasePointsAndOfTheMirrorLineSetTheirFlagsOnlyWhenTheySucceed) {
  // A cancelled pick leaves the mode without its point, which "确定" then says.
  const struct {
    const char* mode;
    const char* button;
    Answers cancelled;
    std::string prompts;
    const char* complaint;
  } cases[] = {
      {"radioButton_rotate_image",
       "pushButton_pick_rotate_point",
       {std::nullopt},
       "\n拾取点:",
       "请输入正确的旋转基点"},
      {"radioButton_mirror",
       "selMirrorLine",
       {std::nullopt, "1,1"},
       "\n拾取起始点:",
       "请输入正确的镜像线"},
      {"radioButton_mirror",
       "selMirrorLine",
       {"1,1", std::nullopt},
       "\n拾取起始点:\n拾取终止点:",
       "请输入正确的镜像线"},
  };
  type("lineEdit_rotate_degree", "0");
  for (const auto& one : cases) {
    choose(one.mode);
    EXPECT_EQ(pick(one.button, one.cancelled), one.prompts);
    host_->ui.boxes.clear();
    press("calRectify");
    EXPECT_THAT(host_->ui.boxes, ElementsAre(one.complaint));
  }
  choose("radioButton_zoom_image");
  EXPECT_EQ(pick("pushButton_get_zoom_point", {std::nullopt}), "\n拾取点:\n");
}

}  // namespace
