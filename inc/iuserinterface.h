// What a component may ask of the user interface, with or without a window. The CAD adapter
// supplies it; components ask the factory. Texts are UTF-8.
#pragma once

#include "inc/kform.h"
#include "inc/klisting.h"
#include "inc/kobject.h"
#include "inc/kvalues.h"

class IUserInterface : public kel::IObject {
 public:
  KEL_INTERFACE(IUserInterface)

  enum class Folder { kProfile, kConfiguration, kCache };

  /// One line on the command line. A leading "\n" is not needed.
  virtual void message(const kel::DString& text) = 0;
  /// A question that is answered with yes or no.
  virtual bool question(const kel::DString& text) = 0;
  /// Files to open; empty when the user cancels. `filter` has the form "text|*.tif|...||".
  virtual kel::StringList askFiles(const kel::DString& title, const kel::DString& filter,
                                   bool severalAllowed) = 0;
  /// Index of the chosen text, or -1.
  virtual int choose(const kel::DString& title, const kel::StringList& choices) = 0;
  virtual void beginProgress(const kel::DString& label, int minimum, int maximum) = 0;
  virtual void moveProgress(int position) = 0;
  virtual void endProgress() = 0;
  /// True once the user has asked to stop the running operation.
  virtual bool cancelWanted() = 0;
  virtual kel::DString folder(Folder which) = 0;
  /// Adds to a counter of the current redraw ("windows", "pixels", "bytes", "tiles_read",
  /// "tiles_cached"), for the host's statistics.
  virtual void count(const char* counter, long long amount) = 0;
  /// Lets the user fill in a form; false when it is cancelled, the form then as it was.
  virtual bool askForm(kel::Form& form) = 0;
  /// Shows tasks that run one after the other, until endTasks(). Progress meanwhile is shown with
  /// them.
  virtual void beginTasks(const kel::DString& title, const kel::StringList& tasks) = 0;
  /// `text` is a remark on the task, or empty.
  virtual void setTask(int task, kel::TaskState state, const kel::DString& text) = 0;
  /// Shows the report; returns when the user has seen it.
  virtual void endTasks(const kel::DString& report) = 0;
  /// Lets the user choose images of a listing; their keys, none when the user cancels.
  virtual kel::StringList chooseFromListing(const kel::Listing& listing) = 0;
  /// True while the file dialogs of the running command are answered with files that the user has
  /// named already: dropped on the window, say.
  virtual bool filesGiven() = 0;

 protected:
  ~IUserInterface() = default;
};
