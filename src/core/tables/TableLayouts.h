#pragma once

#include "core/tables/Field.h"

#include <vector>

// Field layouts of the working tables, in field order.
enum class AnimalLayout { Herd, Summary, Report };

std::vector<FieldDef> AnimalFields(AnimalLayout layout);
std::vector<FieldDef> GroupFields();
std::vector<FieldDef> ProducerFields();
std::vector<FieldDef> UseChangeFields();
