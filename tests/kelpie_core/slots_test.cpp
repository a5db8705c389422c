// A slot is the place in declaration order, the four operations of the base included and a
// destructor counted once. Callers elsewhere rely on the places, so each is pinned here.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "inc/callbackprogressbar.h"
#include "inc/callbackrectifyoperator.h"
#include "inc/iappmanager.h"
#include "inc/ibatchimageconversion.h"
#include "inc/icadadapter.h"
#include "inc/iconfigmanager.h"
#include "inc/iimagedivision.h"
#include "inc/imessagerouter.h"
#include "inc/iprogressbar.h"
#include "inc/irectifydialog.h"
#include "inc/irectifydialogmaker.h"
#include "inc/iuserinterface.h"

namespace {

/// Place in the table of virtual operations; a pointer to such an operation holds its offset + 1.
template <typename Member>
int entryOf(Member member) {
  uintptr_t word = 0;
  std::memcpy(&word, &member, sizeof word);
  return static_cast<int>((word - 1) / sizeof(void*));
}

struct Slot {
  const char* name;
  int entry;
  int slot;
};

template <size_t N>
void expectSlots(const Slot (&slots)[N]) {
  for (const Slot& one : slots) EXPECT_EQ(one.entry, one.slot) << one.name;
}

#define SLOT(Interface, operation, slot) \
  { #Interface "::" #operation, entryOf(&Interface::operation), slot }
// g++ gives a virtual destructor two entries, so what stands after it is one entry further on.
#define SLOT_AFTER_DESTRUCTOR(Interface, operation, slot) \
  { #Interface "::" #operation, entryOf(&Interface::operation) - 1, slot }

TEST(Slots, BaseAndSmallInterfaces) {
  expectSlots({
      SLOT(kel::IObject, queryInterface, 0),
      SLOT(kel::IObject, implementationName, 1),
      SLOT(kel::IObject, retain, 2),
      SLOT(kel::IObject, release, 3),
      SLOT(IAppManager, applicationFolder, 4),
      SLOT(IAppManager, pluginCount, 5),
      SLOT(IAppManager, loadPlugins, 6),
      SLOT(IConfigManager, databasePath, 4),
      SLOT(IConfigManager, isOpen, 5),
      SLOT(IConfigManager, contains, 6),
      SLOT(IConfigManager, removeValue, 7),
      SLOT(IConfigManager, getValue, 8),
      SLOT(IConfigManager, setValue, 9),
      SLOT(IMessageRouter, addReceiver, 4),
      SLOT(IMessageRouter, removeReceiver, 5),
      SLOT(IMessageRouter, send, 6),
      SLOT_AFTER_DESTRUCTOR(CallBackMessageRouter, messageReceived, 1),
      SLOT(IUserInterface, message, 4),
      SLOT(IUserInterface, question, 5),
      SLOT(IUserInterface, askFiles, 6),
      SLOT(IUserInterface, choose, 7),
      SLOT(IUserInterface, beginProgress, 8),
      SLOT(IUserInterface, moveProgress, 9),
      SLOT(IUserInterface, endProgress, 10),
      SLOT(IUserInterface, cancelWanted, 11),
      SLOT(IUserInterface, folder, 12),
      SLOT(IUserInterface, count, 13),
      SLOT(IUserInterface, askForm, 14),
      SLOT(IUserInterface, beginTasks, 15),
      SLOT(IUserInterface, setTask, 16),
      SLOT(IUserInterface, endTasks, 17),
      SLOT(IUserInterface, chooseFromListing, 18),
      SLOT(IUserInterface, filesGiven, 19),
  });
}

TEST(Slots, ImageDivision) {
  // Numbered from 1 after the four of the base.
  expectSlots({
      SLOT(IImageDivision, init, 4),
      SLOT(IImageDivision, buildPyramid, 5),
      SLOT(IImageDivision, readRegion, 6),
      SLOT(IImageDivision, readRegionOverview, 7),
      SLOT(IImageDivision, hasPyramid, 8),
      SLOT(IImageDivision, close, 9),
      SLOT(IImageDivision, width, 10),
      SLOT(IImageDivision, height, 11),
      SLOT(IImageDivision, setOutputMode, 12),
      SLOT(IImageDivision, geoTransform, 13),
      SLOT(IImageDivision, getGeoInfo, 14),
      SLOT(IImageDivision, setNoPyramid, 15),
      SLOT(IImageDivision, coordinateSystem, 16),
      SLOT(IImageDivision, readBlock, 17),
      SLOT(IImageDivision, setAntiAliasing, 18),
      SLOT(IImageDivision, setStretchMode, 19),
      SLOT(IImageDivision, announceWindow, 20),
      SLOT(IImageDivision, bandCount, 21),
      SLOT(IImageDivision, notes, 22),
  });
}

TEST(Slots, CadAdapter) {
  const int prepare = entryOf(&ICadAdapter::prepareAdapter);
  EXPECT_EQ(prepare, 4);
  EXPECT_EQ(entryOf(&ICadAdapter::setModuleState), prepare + 21);
  expectSlots({
      SLOT(ICadAdapter, hostName, 5),           SLOT(ICadAdapter, hostVersion, 6),
      SLOT(ICadAdapter, hasDocument, 7),        SLOT(ICadAdapter, documentName, 8),
      SLOT(ICadAdapter, documentPath, 9),       SLOT(ICadAdapter, isModelSpace, 10),
      SLOT(ICadAdapter, printMessage, 11),      SLOT(ICadAdapter, sendCommand, 12),
      SLOT(ICadAdapter, findFile, 13),          SLOT(ICadAdapter, systemVariable, 14),
      SLOT(ICadAdapter, setSystemVariable, 15), SLOT(ICadAdapter, viewCenter, 16),
      SLOT(ICadAdapter, viewHeight, 17),        SLOT(ICadAdapter, viewTwist, 18),
      SLOT(ICadAdapter, screenSize, 19),        SLOT(ICadAdapter, regenerate, 20),
      SLOT(ICadAdapter, beginProgress, 21),     SLOT(ICadAdapter, moveProgress, 22),
      SLOT(ICadAdapter, endProgress, 23),       SLOT(ICadAdapter, moduleState, 24),
  });
}

TEST(Slots, Progress) {
  expectSlots({
      SLOT(IProgressBar, setTitle, 4),
      SLOT(IProgressBar, isRunning, 5),
      SLOT(IProgressBar, start, 6),
      SLOT(IProgressBar, setLabel, 7),
      SLOT(IProgressBar, setRange, 8),
      SLOT(IProgressBar, minimum, 9),
      SLOT(IProgressBar, maximum, 10),
      SLOT(IProgressBar, position, 11),
      SLOT(IProgressBar, step, 12),
      SLOT(IProgressBar, cancelWanted, 13),
      SLOT(IProgressBar, end, 14),
      SLOT(IProgressBar, setPosition, 15),
      SLOT(CallBackProgressBar, start, 0),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setRange, 2),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setLabel, 3),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setMinimum, 4),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setMaximum, 5),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setStep, 6),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setVisible, 7),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, text, 8),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, end, 9),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setPosition, 10),
      SLOT_AFTER_DESTRUCTOR(CallBackProgressBar, setUserData, 11),
  });
}

TEST(Slots, RectificationAndConversion) {
  expectSlots({
      SLOT(IRectifyDialog, hasImage, 4),
      SLOT(IRectifyDialog, imagePath, 5),
      SLOT(IRectifyDialog, prepare, 6),
      SLOT(IRectifyDialog, openImage, 7),
      SLOT(IRectifyDialog, setModal, 8),
      SLOT(IRectifyDialog, show, 9),
      SLOT(IRectifyDialog, imageQueryA, 10),
      SLOT(IRectifyDialog, imageQueryB, 11),
      SLOT(IRectifyDialog, imageQueryC, 12),
      SLOT(IRectifyDialog, setRectifyMethod, 13),
      SLOT(IRectifyDialog, setControlPoints, 14),
      SLOT(IRectifyDialog, computeTransform, 15),
      SLOT(IRectifyDialog, minimumPointCount, 16),
      SLOT(IRectifyDialog, getResiduals, 17),
      SLOT(IRectifyDialog, getImageGeometry, 18),
      SLOT(IRectifyDialog, transformQuery, 19),
      SLOT(IRectifyDialog, exportPrepare, 20),
      SLOT(IRectifyDialog, exportImage, 21),
      SLOT(IRectifyDialog, rectifyStatus, 22),
      SLOT(IRectifyDialog, applyPlacement, 23),
      SLOT(IRectifyDialog, imageSource, 24),
      SLOT(IRectifyDialog, rectifyMethod, 25),
      SLOT(IRectifyDialog, acceptTransform, 26),
      SLOT(IRectifyDialog, quality, 27),
      SLOT(IRectifyDialog, transformPoint, 28),
      SLOT(IRectifyDialog, drawingOfPixel, 29),
      SLOT(IRectifyDialog, pixelOfDrawing, 30),
      SLOT(IRectifyDialog, storedState, 31),
      SLOT(IRectifyDialog, restoreState, 32),
      SLOT(IRectifyDialog, setExportResampling, 33),
      SLOT(IRectifyDialog, sourceOfFit, 34),
      SLOT(IRectifyDialogMaker, showDialog, 4),
      SLOT(IBatchImageConversion, convertImage, 4),
      SLOT(IBatchImageConversion, buildPyramid, 5),
      SLOT(IBatchImageConversion, convertedCount, 6),
      SLOT(IBatchImageConversion, run, 7),
      SLOT(CallBackRectifyOperator, areaChanged, 0),
      SLOT(CallBackRectifyOperator, query, 1),
      SLOT(CallBackRectifyOperator, redraw, 2),
      SLOT(CallBackRectifyOperator, pickPoint, 3),
      SLOT(CallBackRectifyOperator, imageAnalyser, 4),
  });
}

TEST(Slots, AProgressCallbackUsedDirectlyShowsNothing) {
  CallBackProgressBar callback;
  callback.start("label", 0, 100);
  callback.setPosition(50);
  callback.end();
  EXPECT_TRUE(callback.text().isEmpty());
}

}  // namespace
