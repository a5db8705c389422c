#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "inc/imessagerouter.h"

namespace {

struct Receiver final : CallBackMessageRouter {
  Receiver(std::string name, std::vector<std::string>& list) : label(std::move(name)), log(list) {}
  void messageReceived(const kel::DString& message, const kel::Variant& value) override {
    log.push_back(label + ":" + message.str() + "=" + value.toString().str());
    if (then) then();
  }
  std::string label;
  std::vector<std::string>& log;
  std::function<void()> then;
};

TEST(MessageRouter, DeliversInOrderToThoseStillRegistered) {
  std::vector<std::string> log;
  Receiver a("a", log), b("b", log), other("other", log);
  kel::Object<IMessageRouter> router("N", "router_test", 1);
  ASSERT_FALSE(router.isNull());
  router->addReceiver("view", &a);
  router->addReceiver("view", &a);
  router->addReceiver("view", &b);
  router->addReceiver("else", &other);

  kel::Object<IMessageRouter> sender("N", "router_test", 2);
  sender->send("view", 3);
  EXPECT_EQ(log, (std::vector<std::string>{"a:view=3", "b:view=3"}));

  log.clear();
  a.then = [&] { sender->removeReceiver(&b); };
  sender->send("view", "x");
  sender->send("nobody", 1);
  EXPECT_EQ(log, (std::vector<std::string>{"a:view=x"}));
  for (Receiver* one : {&a, &b, &other}) router->removeReceiver(one);
}

}  // namespace
