#pragma once

namespace ClusterStudy {

/// The option with which a job starts this program, and the variables of its environment.
constexpr const char *RunCaseOption = "--run-case";
constexpr const char *ProgramVariable = "CLUSTER_STUDY_PROGRAM"; // the full path of this program
constexpr const char *FolderVariable = "CLUSTER_STUDY_FOLDER";   // the output folder
constexpr const char *OffsetVariable = "CLUSTER_STUDY_OFFSET";   // case number minus task number

/// Runs the case of this job. Returns 0 if it succeeded, 2 if not, 1 if it could not be run.
int runCaseOfJob();

} // namespace ClusterStudy
