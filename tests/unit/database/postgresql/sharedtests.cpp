// Tests of other folders that run here on a server's database: all of them but those of what only a file can
// do, those that expect its path or target, and those that change its columns in the file's own language.
#include <cstdlib>

namespace {

/// Before the test framework looks, which it does as early as all other objects are made.
[[gnu::constructor(101)]] void leaveOut() {
  ::setenv("GTEST_FILTER",
           "*-ReportToAccess.AnEmojiAtTheEndOfASubjectIsReadableByOtherPrograms:"
           "ReportToAccess.ADatabaseWithoutTheBodyStillTakesReports:"
           "Reporting.AfterAnAccessReportTheDatabaseIsCompactedAndTheCubeMade:"
           "Reporting.EveryStepOfAReportIsLogged:"
           "GlobalSettings.ANewDatabaseGetsTheRowsOfTheDefaultCaptions:"
           "GlobalSettings.AValueWhoseEnabledFlagIsUnknownIsReported:"
           "SaveGlobalSettings.EverythingThatWasSavedReadsBack:"
           "SaveGlobalSettings.TheSettingsRowIsMadeWhenThereIsNoneAndChangedWhenThereIs:"
           "SaveGlobalSettings.ADatabaseThat*:"
           "SaveGlobalSettings.AnAspTargetGetsItsCopiesIntoTheProgramsFolder:"
           "SaveGlobalSettings.ACopyThatCannotBeWrittenIsReported",
           0);
}

}  // namespace
