// file_server FILE: serves one file over HTTP on the loopback interface until standard input ends;
// prints the address first.

#include "peers/file_server.h"

#include <iostream>
#include <limits>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const quietlark::FileServer server(QString::fromLocal8Bit(argv[1]));
    std::cout << server.url(QStringLiteral("/model.bin")).toStdString() << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    return 0;
}
