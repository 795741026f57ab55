#pragma once

// Inside a parser with the JSON object `o` and the new record `r`: reads a
// field from the key of the same name.
#define READ(field) Read(o, #field, r->field)
#define READ_DATE(field) ReadDate(o, #field, r->field)
#define READ_DATE_TIME(field) ReadDateTime(o, #field, r->field)
#define READ_LIST(field) ParseList(o, QStringLiteral(#field), r->field)
