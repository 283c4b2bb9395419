#pragma once

/// What the film library and the film window tell the operator, apart from captions. "{}" stands for what
/// `filled` puts in. Each has an entry in the manual.
namespace drx9::filmText {

// The library.
inline constexpr const char* kNotConverted = "Not converted: {}";
inline constexpr const char* kAllNumbered = "Converted, all films numbered; the old file is kept as {}";
inline constexpr const char* kSomeNumbered = "Converted, {} of {} films numbered; the old file is kept as {}";
inline constexpr const char* kIndexLeft = ". An index is left on Film";
inline constexpr const char* kAttention = ". Attention: {}";
inline constexpr const char* kBackupExists = "it exists already";
inline constexpr const char* kNoBackup = "the old file cannot be kept as {}: {}";
inline constexpr const char* kNotSavedAs = "Not saved as {}: {}";
inline constexpr const char* kSavedAs = "Saved as {}.";
inline constexpr const char* kChangesElsewhere = "Changes here still go to {}; open {} to edit it.";
inline constexpr const char* kNotCopied = "Nothing read: the library cannot be copied to {}: {}";
inline constexpr const char* kReadOnly = "Read-only: {}";
inline constexpr const char* kChangeNotSaved = "Change not saved: {}";
inline constexpr const char* kChangesNotSaved = "Changes not saved: {}";

// Editing.
inline constexpr const char* kCannotHold = "Not stored: a film name cannot hold \"{}\"";
inline constexpr const char* kQuote = "\"{}\" cannot be looked up: its name holds a quote";
inline constexpr const char* kLongTime = "Time setpoint of {} s: more than its boxes can show";
inline constexpr const char* kNoNumber = "\"{}\" is no number: the value stays as it was";
inline constexpr const char* kNoMaterial = "No material \"{}\": the film keeps \"{}\"";
inline constexpr const char* kSameNameAdded =
    "Film \"{}\" was added; another film has that name and is shown for both, until one is renamed";
inline constexpr const char* kFilmAdded = "Film \"{}\" was added; choose it in the list to edit it";

// Boxes: the text, then its title.
inline constexpr const char* kReservedName =
    "UnitFilm and NewFilm cannot be used for\nfilm names. Please select another name.";
inline constexpr const char* kReservedNameTitle = "Invalid Film Name!";
inline constexpr const char* kDuplicateMaterial = "Duplicate name. Select another name for Material";
inline constexpr const char* kDuplicateMaterialTitle = "Material Name already Exists!";
inline constexpr const char* kDuplicateFilm = "Duplicate name. Select another name for Film";
inline constexpr const char* kDuplicateFilmTitle = "Film Name already Exists!";
inline constexpr const char* kAskMaterial = "Enter new material name:";
inline constexpr const char* kAskMaterialTitle = "New Material";
inline constexpr const char* kAskFilm = "Enter new film name:";
inline constexpr const char* kAskFilmTitle = "New Film";
inline constexpr const char* kAskUnsaved = "Save Uploaded Data to a database?";
inline constexpr const char* kUploadError = "Error reading Film number {}";
inline constexpr const char* kUploadErrorTitle = "Upload Error!";
inline constexpr const char* kShutterOpen = "Please close shutter before downloading films.";
inline constexpr const char* kShutterOpenTitle = "Shutter is opened!";

// Boxes of a verification: what the instrument holds, then what it should.
inline constexpr const char* kNameIs = "Film Name for film #{} = {}.\nThe Film Name should be {}";
inline constexpr const char* kDensityIs = "Film Density for film #{} = {}.\nThe Film Density should be {}";
inline constexpr const char* kToolingIs = "Film Tooling for film #{} = {}.\nThe Film Tooling should be {}";
inline constexpr const char* kZFactorIs = "Film ZFactor for film #{} = {}.\nThe Film ZFactor should be {}";
inline constexpr const char* kFinalIs =
    "Final Thickness for film #{} = {}.\nThe Final Thickness should be {}";
inline constexpr const char* kThicknessIs =
    "Thickness Setpoint for film #{} = {}.\nThe Thickness Setpoint should be {}";
inline constexpr const char* kTimeIs = "Time Setpoint for film #{} = {}.\nThe Time Setpoint should be {}";
inline constexpr const char* kSensorsIs =
    "Sensor Average for film #{} = {}.\nThe Sensor Average should be {}";

// Transfers.
inline constexpr const char* kReading = "Reading DRX-9 Films";
inline constexpr const char* kWriting = "Writing DRX-9 Films";
inline constexpr const char* kVerifying = "Verifying DRX-9 Films";
inline constexpr const char* kNoAnswer = "The DRX-9 does not answer";
inline constexpr const char* kShutterUnknown =
    "Nothing sent: whether the shutter is closed is not known ({})";
inline constexpr const char* kFilmFailed = "Film {}: {}"; ///< then the next, or a status text
inline constexpr const char* kNoFilm = "no film";
inline constexpr const char* kNotStored = "Not stored";
inline constexpr const char* kFieldOf = "{} of film {}"; ///< behind it, where the rest of the film was stored
inline constexpr const char* kOutOfStep = "Answers out of step";
inline constexpr const char* kShutterOutOfStep = "answers out of step";
inline constexpr const char* kSentOutOfStep = "Answers out of step: some films may not have been taken";
inline constexpr const char* kNoPlace = "Not sent, the DRX-9 holds {} films";
inline constexpr const char* kTooLong = "Not sent, its numbers are too long, or none";
inline constexpr const char* kRow = "row {}"; ///< stands for a film without a name
inline constexpr const char* kNotLookedUp = "Not sent, cannot be looked up";
inline constexpr const char* kMaterialNotLookedUp = "Not sent, its material cannot be looked up";
inline constexpr const char* kSameName = "Several films of that name, the first was sent";
inline constexpr const char* kNamesCut = "Names cut to 8 characters";
inline constexpr const char* kMaterialMissing =
    "Material not in the library, density and Z factor left as they are";
inline constexpr const char* kNotAccepted = "Not accepted ({})";
inline constexpr const char* kNotAnswered = "Not known whether accepted ({})";
inline constexpr const char* kNotReadBack = "Not read back";
inline constexpr const char* kNotCompared = "Not compared, cannot be looked up";
inline constexpr const char* kReplaced =
    "Another program replaced the library, films stored before that are gone";
inline constexpr const char* kReset = "The DRX-9 was reset to its default values";
inline constexpr const char* kNotReset = "Defaults not accepted: {}";
inline constexpr const char* kResetUnknown = "Defaults, not known whether they were taken: {}";
inline constexpr const char* kNotKnown = "Not sent, what the DRX-9 holds for their empty fields is not known";
inline constexpr const char* kNotSavedYet = ". Not saved under another name yet";

// The errors table.
inline constexpr const char* kErrorsNotOpen = "Error opening recordset: {}";
inline constexpr const char* kErrorsNoRecordset =
    "Error handler cannot write to the [{}] errors table because the "
    "Destination recordset variable has not been initialized.";

// The window.
inline constexpr const char* kHoldReason = "Film Setup is open";
inline constexpr const char* kUnsaved = "Uploaded data, not saved under another name yet";
inline constexpr const char* kInstrument = "Ver. {}, {} films";
inline constexpr const char* kOffLine = "Off line";
inline constexpr const char* kLinkLost = "Off line: the link was lost";

} // namespace drx9::filmText
