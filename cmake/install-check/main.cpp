// Links against an installed libqv through its umbrella header.
#include <qv/qv.h>

#include <cstdio>

int main() {
    qv::CString text(u"installed");
    text += u" qv";
    std::printf("%s\n", text.GetUTF8());
    return text.GetLength() == 12 ? 0 : 1;
}
