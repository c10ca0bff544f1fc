// From the type that a column was declared with to the type of its field.
#pragma once

#include <zovMdlFieldType.h>
#include <zovString.h>

namespace zovModel {

struct columnType {
    zov::metamodel::eFieldType mType;
    unsigned long mLength;   // the declared length of a text, 0 for none
    zov::string mCustomText; // the declared type of eCustom, else empty
};

// VARCHAR(160) is a string of length 160, BIGINT a long, MONEY a custom type of that text.
columnType typeOfColumn(zov::string const& declared);

} // namespace zovModel
