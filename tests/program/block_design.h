// A design of two levels: a part and a block on the primary sheet, a part in the block.
#pragma once

inline constexpr char block_design[] = R"(
symbol res
  rect -1,0 1,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
symbol block
  rect 0,0 6,6
  pin A 0,2 IN
sheet block
  part R9 res 10,10
sheet top
  page 40,20
  part X1 block 5,5
  part R1 res 20,5
  net A
    wire X1.A 20,7 30,7
)";
