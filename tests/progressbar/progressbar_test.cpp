#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inc/iappmanager.h"
#include "inc/iprogressbar.h"
#include "tests/support/recordinginterface.h"

namespace {

using tarn::test::recorded;

TEST(ProgressBar, ShowsWhatItIsToldThroughTheUserInterface) {
  tarn::test::RecordingInterface::registerSelf();
  kel::Object<IAppManager> manager("N", "test", 1);
  manager->loadPlugins("plugins", 0);
  {
    kel::Object<IProgressBar> bar("N", "test", 2);
    ASSERT_FALSE(bar.isNull());
    bar->setPosition(5);  // before start nothing is shown
    bar->end();
    EXPECT_TRUE(recorded().progress.empty());

    bar->start("pyramid", 1, 100, 0);
    bar->setPosition(40);
    bar->setPosition(250);  // passes unchanged, whatever the range
    bar->end();
    bar->setPosition(60);
    EXPECT_EQ(recorded().progress,
              (std::vector<std::string>{"begin pyramid 1 100", "move 40", "move 250", "end"}));
    recorded().progress.clear();
    bar->setTitle("image.tif");
    bar->start("again", 0, 10, 0);
    bar->step(4);
    bar->setLabel("other");
    EXPECT_TRUE(bar->isRunning());
    recorded().cancel = true;
    EXPECT_TRUE(bar->cancelWanted());
  }
  // A display that is dropped while it runs is taken away.
  EXPECT_EQ(recorded().progress,
            (std::vector<std::string>{"begin image.tif: again 0 10", "move 4",
                                      "begin image.tif: other 0 10", "move 4", "end"}));
}

}  // namespace
