#ifndef KELTRA_FOUNDATION_IDENTIFIER_H
#define KELTRA_FOUNDATION_IDENTIFIER_H

namespace keltra {

void takeIdentifierTable();
void dropIdentifierTable();

}  // namespace keltra

#endif
