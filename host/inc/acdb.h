// Status values and enumerations of the drawing database.
#pragma once

#include "adesk.h"

namespace Acad {

enum ErrorStatus : int {
  eOk = 0,
  eNotImplementedYet = 1,
  eNotApplicable = 2,
  eInvalidInput = 3,
  eAmbiguousInput = 4,
  eAmbiguousOutput = 5,
  eOutOfMemory = 6,
  eBufferTooSmall = 7,
  eInvalidOpenState = 8,
  eEntityInInactiveLayout = 9,
  eHandleExists = 10,
  eNullHandle = 11,
  eBrokenHandle = 12,
  eUnknownHandle = 13,
  eHandleInUse = 14,
  eNullObjectPointer = 15,
  eNullObjectId = 16,
  eNullBlockName = 17,
  eContainerNotEmpty = 18,
  eNullEntityPointer = 19,
  eIllegalEntityType = 20,
  eKeyNotFound = 21,
  eDuplicateKey = 22,
  eInvalidIndex = 23,
  eCharacterNotFound = 24,
  eDuplicateIndex = 25,
  eAlreadyInDb = 26,
  eOutOfDisk = 27,
  eDeletedEntry = 28,
  eNegativeValueNotAllowed = 29,
  eInvalidExtents = 30,
  eInvalidAdsName = 31,
  eInvalidSymbolTableName = 32,
  eInvalidKey = 33,
  eWrongObjectType = 34,
  eWrongDatabase = 35,
  eObjectToBeDeleted = 36,
  eInvalidDwgVersion = 37,
  eAnonymousEntry = 38,
  eIllegalReplacement = 39,
  eEndOfObject = 40,
  eEndOfFile = 41,
  eIsReading = 42,
  eIsWriting = 43,
  eNotOpenForRead = 44,
  eNotOpenForWrite = 45,
  eNotThatKindOfClass = 46,
  eInvalidBlockName = 47,
  eMissingDxfField = 48,
  eDuplicateDxfField = 49,
  eInvalidDxfCode = 50,
  eInvalidResBuf = 51,
  eBadDxfSequence = 52,
  eFilerError = 53,
  eOtherObjectsBusy = 57,
  eMustFirstAddBlockToDb = 58,
  eCannotNestBlockDefs = 59,
  eFileAccessErr = 72,
  eFileSystemErr = 73,
  eFileInternalErr = 74,
  eFileTooManyOpen = 75,
  eFileNotFound = 76,
  eWasErased = 78,
  ePermanentlyErased = 79,
  eWasOpenForRead = 80,
  eWasOpenForWrite = 81,
  eWasOpenForUndo = 82,
  eWasNotifying = 83,
  eWasOpenForNotify = 84,
  eOnLockedLayer = 85,
  eMustOpenThruOwner = 86,
  eSubentitiesStillOpen = 87,
  eAtMaxReaders = 88,
  eIsWriteProtected = 89,
  eIsXRefObject = 90,
  eNotAnEntity = 91,
  eHadMultipleReaders = 92,
  eDuplicateRecordName = 93,
  eXRefDependent = 94,
  eSelfReference = 95,
  eMissingSymbolTable = 96,
  eMissingSymbolTableRec = 97,
  eWasNotOpenForWrite = 98,
  eWasNotErased = 105,
  eNoDatabase = 111,
  eRegappIdNotFound = 139,
  eMakeMeProxy = 301,
};

}  // namespace Acad

/// The name of a status ("eWasErased"), for messages; "unknown status" for a number without a name.
ACADHOST_EXPORT const ACHAR* acadErrorStatusText(Acad::ErrorStatus status);

namespace AcDb {

enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };

enum OsnapMode {
  kOsModeEnd = 1,
  kOsModeMid = 2,
  kOsModeCen = 3,
  kOsModeNode = 4,
  kOsModeQuad = 5,
  kOsModeIns = 7,
  kOsModePerp = 8,
  kOsModeTan = 9,
  kOsModeNear = 10,
};

enum Visibility { kVisible = 0, kInvisible = 1 };

/// Hundredths of a millimetre; the named values below zero are no widths.
enum LineWeight : short {
  kLnWt000 = 0,
  kLnWt025 = 25,
  kLnWt050 = 50,
  kLnWt100 = 100,
  kLnWt211 = 211,
  kLnWtByLayer = -1,
  kLnWtByBlock = -2,
  kLnWtByLwDefault = -3,
};

enum AcDbDwgVersion {
  kDHL_1015 = 23,
  kDHL_1800 = 25,
  kDHL_1021 = 27,
  kDHL_1024 = 29,
  kDHL_1027 = 31,
  kDHL_1032 = 33,
  kDHL_CURRENT = kDHL_1032,
};

enum MaintenanceReleaseVersion { kMRelease0 = 0, kMReleaseCurrent = 55 };

enum FilerType {
  kFileFiler = 0,
  kCopyFiler = 1,
  kUndoFiler = 2,
  kBagFiler = 3,
  kIdXlateFiler = 4,
  kPageFiler = 5,
  kDeepCloneFiler = 6,
  kIdFiler = 7,
  kPurgeFiler = 8,
  kWblockCloneFiler = 9,
};

enum DuplicateRecordCloning {
  kDrcNotApplicable = 0,
  kDrcIgnore = 1,
  kDrcReplace = 2,
  kDrcXrefMangleName = 3,
  kDrcMangleName = 4,
  kDrcUnmangleName = 5,
};

/// Group codes of extended records and drawing files that have a caller.
enum DxfCode {
  kDxfStart = 0,
  kDxfText = 1,
  kDxfHandle = 5,
  kDxfLayerName = 8,
  kDxfXCoord = 10,
  kDxfReal = 40,
  kDxfColor = 62,
  kDxfInt16 = 70,
  kDxfInt32 = 90,
  kDxfSubclass = 100,
  kDxfXReal = 140,
  kDxfInt64 = 160,
  kDxfXInt16 = 170,
  kDxfNormalX = 210,
  kDxfInt8 = 280,
  kDxfBool = 290,
  kDxfXTextString = 300,
  kDxfBinaryChunk = 310,
  kDxfSoftPointerId = 330,
  kDxfHardPointerId = 340,
  kDxfSoftOwnershipId = 350,
  kDxfHardOwnershipId = 360,
};

}  // namespace AcDb
