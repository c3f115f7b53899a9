#include <Remote/Stack.h>

Remote::Stack::~Stack() = default;
