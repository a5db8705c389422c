// A plug-in as any other: one implementation, registered by the one entry.
#include "tests/kelpie_core/testplugin.h"
#include "inc/kplugin.h"

namespace {

class TestObject final : public kel::Implements<TestObject, ITestObject> {
 public:
  static constexpr const char* kName = "testplugin.TestObject";
  int answer() override { return 42; }
};

}  // namespace

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  TestObject::registerSelf();
}
