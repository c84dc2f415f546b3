DO f a b c
DO none
SHOW FILE f
HELP
HELP DO
SHOW FILE top_design_kv
!cat f
SYST "echo x"
DOBIN SHOW_WORDS a b
DODIR main
