// Messages between framework objects, by name.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

/// Receives the messages that it was registered for.
class CallBackMessageRouter {
 public:
  virtual ~CallBackMessageRouter() = default;
  virtual void messageReceived(const kel::DString& message, const kel::Variant& value) = 0;
};

class IMessageRouter : public kel::IObject {
 public:
  KEL_INTERFACE(IMessageRouter)

  /// Registers a receiver of one message; it must be taken out before it is destroyed.
  virtual void addReceiver(const kel::DString& message, CallBackMessageRouter* receiver) = 0;
  virtual void removeReceiver(CallBackMessageRouter* receiver) = 0;
  /// Delivers to every receiver of the message, on the caller's thread, in the order registered.
  virtual void send(const kel::DString& message, const kel::Variant& value) = 0;

 protected:
  ~IMessageRouter() = default;
};
