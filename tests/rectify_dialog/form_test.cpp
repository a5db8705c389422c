// The form: what its objects are called and say, and which of them a mode enables.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;

class Form : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    rectifyDialog::request()->showModal(true);
  }
  std::vector<std::string> enabledOf(const std::vector<const char*>& names) {
    std::vector<std::string> enabled;
    for (const char* name : names) {
      if (find<QWidget>(name).isEnabled()) enabled.emplace_back(name);
    }
    return enabled;
  }
};

TEST_F(Form, HasItsObjectsByNameKindAndText) {
  const struct {
    const char* kind;
    const char* name;
    const char* text;
  } objects[] = {
      {"QRadioButton", "radioButton_by_control_point", "控制点变换"},
      {"QGroupBox", "groupBox_4", "已采集控制点"},
      {"QTableWidget", "pointsTable", nullptr},
      {"QGroupBox", "groupBox", ""},
      {"QLabel", "label_2", "图面"},
      {"QLabel", "label_3", "实际"},
      {"QLineEdit", "oldEast", ""},
      {"QLineEdit", "oldNorth", ""},
      {"QLineEdit", "newEast", ""},
      {"QLineEdit", "newNorth", ""},
      {"QPushButton", "pickOld", "拾取"},
      {"QPushButton", "pickNew", "拾取"},
      {"QLabel", "label_8", "纠正方法："},
      {"QComboBox", "rectifyMethod", nullptr},
      {"QPushButton", "calError", "计算误差"},
      {"QCheckBox", "_is_rectify", "是否纠正"},
      {"QPushButton", "_contrl_point_input_button", "导入控制点"},
      {"QPushButton", "addPoints", "添加"},
      {"QPushButton", "updatePoints", "更新"},
      {"QPushButton", "deletePoints", "删除"},
      {"QRadioButton", "radioButton_moveImgage", "平移影像"},
      {"QLineEdit", "lineEdit_X_move", ""},
      {"QLineEdit", "lineEdit_Y_move", ""},
      {"QPushButton", "pushButton_MovePoint", "图面指定"},
      {"QRadioButton", "radioButton_zoom_image", "缩放影像"},
      {"QLineEdit", "lineEdit_scaling_X", ""},
      {"QLineEdit", "lineEdit_scaling_Y", ""},
      {"QPushButton", "pushButton_get_zoom_point", "拾取缩放基点"},
      {"QRadioButton", "radioButton_rotate_image", "旋转影像"},
      {"QLineEdit", "lineEdit_rotate_degree", ""},
      {"QLabel", "label_R1", "指定旋转角度（度，逆时针）"},
      {"QPushButton", "pushButton_pick_rotate_point", "拾取旋转基点"},
      {"QRadioButton", "radioButton_mirror", "镜像影像"},
      {"QPushButton", "selMirrorLine", "指定镜像线位置"},
      {"QPushButton", "_out_rectify_image", "导出纠正影像"},
      {"QPushButton", "abort", "放弃"},
      {"QPushButton", "calRectify", "确定"},
  };
  EXPECT_EQ(dialog().objectName(), "rectifyDialog");
  EXPECT_EQ(dialog().windowTitle(), "影像纠正");
  EXPECT_TRUE(dialog().isModal());
  EXPECT_EQ(dialog().parent(), nullptr);
  for (const auto& object : objects) {
    QWidget& widget = find<QWidget>(object.name);
    EXPECT_STREQ(widget.metaObject()->className(), object.kind) << object.name;
    const char* property = QByteArray(object.kind) == "QGroupBox" ? "title" : "text";
    if (!object.text) continue;
    EXPECT_EQ(widget.property(property).toString(), object.text) << object.name;
  }
  QStringList labels;
  for (const QLabel* label : dialog().findChildren<QLabel*>()) labels << label->text();
  for (const char* text : {"东：", "北：", "X方向平移距离（米）", "Y方向平移距离（米）",
                           "X方向缩放比例", "Y方向缩放比例"}) {
    EXPECT_TRUE(labels.contains(text)) << text;
  }
}

TEST_F(Form, NamesColumnsAndMethodsInTheirOrder) {
  std::vector<std::string> headers;
  for (int i = 0; i < table().columnCount(); ++i) {
    headers.push_back(table().horizontalHeaderItem(i)->text().toStdString());
  }
  EXPECT_THAT(headers,
              ElementsAre("序号", "源东坐标", "源北坐标", "目标东坐标", "目标北坐标", "误差"));
  const QComboBox& methods = find<QComboBox>("rectifyMethod");
  std::vector<std::string> items;
  for (int i = 0; i < methods.count(); ++i) items.push_back(methods.itemText(i).toStdString());
  EXPECT_THAT(items, ElementsAre("三次变换", "二次变换", "线性变换", "仿射变换", "赫尔默特"));
}

TEST_F(Form, AModeEnablesItsOwnWidgetsOnly) {
  const struct {
    const char* mode;
    std::vector<const char*> widgets;
  } modes[] = {
      {"radioButton_by_control_point",
       {"pointsTable", "oldEast", "newNorth", "pickOld", "pickNew", "rectifyMethod", "calError",
        "_contrl_point_input_button", "addPoints", "updatePoints", "deletePoints"}},
      {"radioButton_moveImgage", {"lineEdit_X_move", "lineEdit_Y_move", "pushButton_MovePoint"}},
      {"radioButton_zoom_image",
       {"lineEdit_scaling_X", "lineEdit_scaling_Y", "pushButton_get_zoom_point"}},
      {"radioButton_rotate_image", {"lineEdit_rotate_degree", "pushButton_pick_rotate_point"}},
      {"radioButton_mirror", {"selMirrorLine"}},
  };
  const auto expectMode = [&](const char* chosen) {
    for (const auto& mode : modes) {
      const bool isChosen = mode.mode == std::string(chosen);
      EXPECT_EQ(find<QRadioButton>(mode.mode).isChecked(), isChosen) << mode.mode;
      EXPECT_TRUE(find<QRadioButton>(mode.mode).isEnabled()) << mode.mode;
      EXPECT_EQ(enabledOf(mode.widgets).size(), isChosen ? mode.widgets.size() : 0U) << mode.mode;
    }
    EXPECT_EQ(find<QCheckBox>("_is_rectify").isChecked(),
              chosen == std::string("radioButton_by_control_point"));
    for (const char* always : {"_out_rectify_image", "abort", "calRectify"}) {
      EXPECT_TRUE(find<QWidget>(always).isEnabled());
    }
  };
  expectMode("radioButton_by_control_point");
  for (const auto& mode : modes) {
    choose(mode.mode);
    expectMode(mode.mode);
  }
  // Arrows go through the modes in their order, and stop at the ends.
  const auto pressKey = [&](const char* mode, int key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&find<QWidget>(mode), &event);
  };
  for (int i = 4; i > 0; --i) {
    pressKey(modes[i].mode, i % 2 == 0 ? Qt::Key_Up : Qt::Key_Left);
    expectMode(modes[i - 1].mode);
  }
  pressKey(modes[0].mode, Qt::Key_Up);
  expectMode(modes[0].mode);
  for (int i = 0; i < 4; ++i) {
    pressKey(modes[i].mode, i % 2 == 0 ? Qt::Key_Down : Qt::Key_Right);
    expectMode(modes[i + 1].mode);
  }
  // Being told of a button that is off changes nothing.
  dialog().handleRadioButtonToggle(false);
  expectMode("radioButton_mirror");
}

TEST_F(Form, IsOneAndGoesWhenItIsClosed) {
  EXPECT_EQ(rectifyDialog::request(), rectifyDialog::instance());
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(rectifyDialog::instance(), nullptr);
  rectifyDialog::request()->showModal(false);
  EXPECT_FALSE(dialog().isModal());
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(rectifyDialog::instance(), nullptr);
}

TEST_F(Form, WorksOutTheViewWithoutItsTwist) {
  host_->run("ZOOM C 40500000,3500000 600");
  host_->app->resizeView(900, 600);
  double top = 0, bottom = 0, left = 0, right = 0;
  dialog().GetScreenRect(top, bottom, left, right);
  EXPECT_THAT((std::vector<double>{top, bottom, left, right}),
              ElementsAre(3500300, 3499700, 40499550, 40500450));
  host_->app->resizeView(500, 500);
  dialog().GetScreenRect(top, bottom, left, right);
  EXPECT_DOUBLE_EQ(top - bottom, right - left);
}

TEST_F(Form, FitsIntoASmallScreen) {
  EXPECT_LE(dialog().minimumSizeHint().width(), 960);
  EXPECT_LE(dialog().minimumSizeHint().height(), 560);
  if (const QByteArray file = qgetenv("TARN_SCREENSHOT"); !file.isEmpty()) {
    dialog().grab().save(QString::fromLocal8Bit(file));
  }
}

}  // namespace
