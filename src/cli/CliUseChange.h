#pragma once

class CliHost;
class HalvarnSession;
class TdmIRZ_PLUS;
struct CliOptions;

// "--mark … --use-change CODE" after a download: ticks the named animals and
// sends the change, writing the confirmation into --pdf-dir when given.
// Exit code 0 when every notice got a document number, 3 when some were
// refused or not confirmed, 1 when the run stopped early or was declined,
// 2 when a named animal is not among the downloaded ones.
int RunUseChange(HalvarnSession& session, TdmIRZ_PLUS& registry, CliHost& host, const CliOptions& options);
