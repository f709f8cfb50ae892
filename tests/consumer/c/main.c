#include "../../../examples/c_client/main.c"  // the example is what every user of the library begins with
