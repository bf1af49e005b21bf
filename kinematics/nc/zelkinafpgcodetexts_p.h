#ifndef ZELKINAFPGCODETEXTS_P_H
#define ZELKINAFPGCODETEXTS_P_H

/*!
    The fixed texts of the AFP G-code dialect that the writer writes and the
    read-back (ZELKinNCReplay) finds again: one definition each, so that a
    change of the dialect reaches both.
*/
namespace ZELKinAFPGCodeTexts {

//! File names: "NAME.PPSF", "NAME#0101.PPF", "NAME.PTPF"; a bundle
//! "NAME.bun", written beside "NAME.aptsource" when that is given.
inline constexpr char ProgramSetSuffix[] = ".PPSF";
inline constexpr char PlyFileSuffix[] = ".PPF";
inline constexpr char ProbingSuffix[] = ".PTPF";
inline constexpr char PlyNumberMark = '#';
inline constexpr char BundleSuffix[] = "bun";
inline constexpr char SourceSuffix[] = "aptsource";

//! A bundle's sections: ">>>>> Filename|NAME.PPSF| <<<<<" before each
//! file's lines and ">>>>> End of File <<<<<" after them.
inline constexpr char SectionStart[] = ">>>>> Filename|";
inline constexpr char SectionNameEnd[] = "| <<<<<";
inline constexpr char SectionEnd[] = ">>>>> End of File <<<<<";

//! A course's record, ";[COURSE] CourseNumber=3,TowRoller=...".
inline constexpr char CourseRecord[] = ";[COURSE] CourseNumber=";
//! A tow event for the tow controller, ";PMAC1: G500U117.703A/B[FFFF]".
inline constexpr char TowEvent[] = ";PMAC1: G500U";
//! The lines along a course lie between these two.
inline constexpr char CourseMode[] = "COURSE_MODE";
inline constexpr char OffCourseMode[] = "OFF_COURSE_MODE";

} // namespace ZELKinAFPGCodeTexts

#endif // ZELKINAFPGCODETEXTS_P_H
