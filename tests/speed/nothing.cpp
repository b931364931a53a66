// What the start of any C++ program takes, to compare the start of the tool with.
#include <iostream>

int main()
{
  std::cout << "nothing\n";
}
