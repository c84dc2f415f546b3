# What is a device, what is kept, the parameters of the widths; then the run.
PRIMitive CLASS
PARAMeter WN 0.5
PARAMeter WP 1.0
PROPerty INStance S CLASS MODEL VALUE
PROPerty INStance R W L DRIVE
PROPerty PIN S PIN PINTYPE
PROPerty NET S NET
GENerate DATa ON
RUN
BYE
