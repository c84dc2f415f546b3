# What is a device; then the check. Two faults that a description cannot say are made here.
SYSTem 'rm -f gone/symbol.gx'
SYSTem 'echo _2 > old/symbol.gx'
PRIMitive CLASS
CHEck DESign
BYE
