// Messages by name. Objects are light: the list of receivers is one for the process.
#pragma once

#include "inc/imessagerouter.h"
#include "inc/kplugin.h"

namespace kel {

class MessageRouter final : public Implements<MessageRouter, IMessageRouter> {
 public:
  static constexpr const char* kName = "kelpie_core.MessageRouter";

  void addReceiver(const DString& message, CallBackMessageRouter* receiver) override;
  void removeReceiver(CallBackMessageRouter* receiver) override;
  void send(const DString& message, const Variant& value) override;
};

}  // namespace kel
