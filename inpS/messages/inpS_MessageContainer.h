#pragma once

#include "inpS/messages/inpS_MsgContainerBase.h"

// The message container of a thread: made when first asked for, gone with the thread or with
// Finalize, whichever is first.
class inpS_MessageContainer : public inpS_MsgContainerBase {
public:
  static inpS_MessageContainer& Instance(); // of the calling thread
  static bool Exists();                     // whether the calling thread has one

  // Releases the calling thread's container and thereby reports what it holds.
  static void Finalize();

private:
  inpS_MessageContainer() = default;
};
