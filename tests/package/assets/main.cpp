// SPDX-License-Identifier: Zlib
int main() { return 0; }
