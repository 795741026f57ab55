#pragma once

#include "registry/sim/RegistrySimulator.h"

class QCommandLineParser;

// The fault options of halvarn-registry-sim: each chosen animal (ear tag) or
// herd (holding number) option may be given several times.
void AddFaultOptions(QCommandLineParser& parser);
SimFaults FaultsFrom(const QCommandLineParser& parser);
