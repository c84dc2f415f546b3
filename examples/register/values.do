# What ngspice found of the register, in its own names: the bits follow D while the clock is high.
VALues FILe register.raw
VALues CHEck
VALues AT 58n
VALues NET /Q_2
VALues NET /XR/X2/X
VALues DEVice /XR/X2/MN3
VALues NEXt /CLK RISe
VALues NET CLK
LIST DEVices abs(id) > 10u
# A circuit's test: an error here ends the batch with status 1.
VALues EXPect /Q_2 1.79 1.81 AT 58n
VALues EXPect /Q_3 -0.01 0.01 AT 18n
VALues EXPect /XR/X2/X -0.01 0.01 AT 58n
BYE
