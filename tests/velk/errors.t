Errors say what was being done, what went wrong, and what to do.

  $ . "$TESTDIR/setup.sh"
  $ velk lst
  velk: there is no command 'lst'; did you mean list?
  [2]
  $ velk list --bord 8
  velk: cannot read the command line: the following argument was not expected: --bord; did you mean --board?
  [2]
  $ velk get -d vxi --board 8
  velk: cannot run get: it wants the NAME of an option; see `velk help get`.
  [2]
  $ velk get Memory -d vxi
  velk: cannot run get without a configuration; say which, by --board N or --file SAVE.
  [2]
  $ velk get Memory -d vxi --board x
  velk: cannot read the board 'x'; give one or two numbers, such as 5 or 5,1.
  [2]
  $ velk set Averages=4 -d vxi --board 8 --yes --backup ''
  velk: cannot read the command line: --backup: it is empty; see `velk help set`.
    Not written.
  [2]
  $ velk get Memory -d vxi --board 8 --file a.cfg
  velk: cannot run get with both --board and --file; give one of them.
  [2]
  $ velk save -d vxi a.cfg
  velk: cannot run save without a configuration; say which board, by --board N.
  [2]
  $ velk diff 8 -d vxi
  velk: cannot run diff: it wants two boards or save files; see `velk help diff`.
  [2]
  $ velk save '' --board 8 -d vxi
  velk: cannot run save: it wants names that are not empty; see `velk help save`.
  [2]
  $ velk status x
  velk: cannot read the status code 'x'; give a number, such as -102.
  [2]
  $ velk status 0 -16 -17 -18 4 -102 1 -77
  Code  Message
  0     Done
  -16   Several lists are valid, and none of them can be chosen
  -17   Not the kind of value that this option or register holds
  -18   A definition puts values of two kinds together
  4     More options than there was room for
  -102  Unable to access hardware
  1     You must reset the system for changes to take effect
  -77   Unknown error: -77
  $ velk help lst
  velk: there is no command 'lst'; did you mean list?
  [2]
  $ velk get Memry -d vxi --board 8
  velk: cannot find the option or key 'Memry': Unknown option (-9); did you mean Memory?
  [3]
  $ velk get memory -d vxi --board 8
  velk: cannot find the option or key 'memory': Unknown option (-9); did you mean Memory, MemoryOffset or MemoryEnable?
  [3]
  $ velk get AddresSpace -d vxi --board 8
  velk: cannot find the option or key 'AddresSpace': Unknown option (-9); did you mean AddressSpace?
  [3]
  $ velk get mem -d vxi --board 8 --key
  velk: cannot find the key 'mem': Unknown key (-13); did you mean MemoryCode, MemoryActive or MemoryOffset?
  [3]
  $ velk values Nothing -d vxi --board 8
  velk: cannot find the option 'Nothing': Unknown option (-9); look at `velk list` for the names.
  [3]
  $ velk values ModelCode -d vxi --board 8
  velk: cannot find the option 'ModelCode': Unknown option (-9); there is a key of this name, and no rule guards keys.
  [3]
  $ velk list xyz -d vxi
  velk: cannot find the option 'xyz': Unknown option (-9); look at `velk list` for the names.
  [3]
  $ velk list 8 -d vxi
  velk: cannot find the option '8': Unknown option (-9); did you mean --board 8?
  [3]
  $ velk list --board 8 -d vxi --key
  velk: cannot run list with --key but without --file; leave it out, or see `velk help list`.
  [2]
  $ velk list --board
  velk: cannot read the command line: --board: 1 required N[,M] missing; see `velk help list`.
  [2]
  $ velk get Memory -d vxi --board 300
  velk: cannot read board 300: Unable to access hardware (-102); look whether there is a board of this number, and at the settings of its accessor in the catalogue.
  [4]
  $ velk get Memory -d vxi --board 2
  velk: cannot read board 2: Configuration EEPROM is invalid (-108); look whether there is a board of this number; if so, what it holds has to be mended by other means.
  [4]
  $ velk get Memory -d vxi --board 8,1
  velk: cannot read board 8,1: Incorrect hardware type (-103); look whether the board is one of this class, and the second word of --board.
  [4]

Definitions that are not there, or broken.

  $ velk classes
  velk: cannot read the catalogue ./CfgClass.ini: Unable to read configuration class information (-202); say where the catalogue CfgClass.ini is, by -d DIR or VELK_DEFINITIONS.
  [3]
  $ velk list -d vxi -c VxiDevise
  velk: cannot find the class 'VxiDevise' in vxi: Incorrect configuration class information (-203); did you mean VxiDevice?
  [3]
  $ cat vxi/CfgClass.ini board/CfgClass.ini >>vxi/both && mv vxi/both vxi/CfgClass.ini
  $ velk list -d vxi
  velk: cannot choose a class: vxi has VxiDevice and Board; give one, by -c NAME or VELK_CLASS.
  [2]
  $ VELK_CLASS=Board velk list -d vxi
  Class Board (vxi):
  Option        Kind
  DeviceClass   list
  Manufacturer  range
  Model         range
  AddressSpace  list
  Memory        list
  MemoryOffset  range
  MemoryEnable  list
  Passed        list
  Ready         list
  Offline       list
  Averages      list
  Label         text
  TriggerLines  lists
  $ velk classes -d vxi
  The catalogue of vxi:
  Class      Accessor   Key files  Option files  Defines
  VxiDevice  velkimage  keys.ini   options.ini   18 keys, 13 options
  Board      velkimage  keys.ini   options.ini   18 keys, 13 options
  $ mkdir bare && sed 's/^Options.*/Options = none.ini/' board/CfgClass.ini >bare/CfgClass.ini && >bare/none.ini
  $ cp board/keys.ini board/zero.img bare && mv bare/zero.img bare/board.img
  $ velk list -d bare --board 0
  Board 0, class Board (bare):
  There are no options.
  $ sed -i '/^Options/d' bare/CfgClass.ini
  $ velk list -d bare
  velk: cannot load the class Board of bare: Incorrect configuration class information (-203); give its section of the catalogue Keys and Options, each of at most 127 characters.
  [3]
  $ echo 'no item' >>board/keys.ini
  $ velk list -d board
  velk: cannot load the class Board of board: Unable to load key definitions (-205); mend line 19 of board/keys.ini.
  [3]
  $ velk classes -d board
  The catalogue of board:
  Class  Accessor   Key files  Option files  Defines
  Board  velkimage  keys.ini   options.ini   cannot be loaded: Unable to load key
                                             definitions (-205); mend line 19 of
                                             board/keys.ini
  $ sed -i '$d; s/= Value/= Vlaue/' board/keys.ini
  $ velk list -d board
  velk: cannot load the class Board of board: Unable to load key definitions (-205); mend a definition in board/keys.ini.
  [3]
  $ sed -i 's/Vlaue/Value/' board/keys.ini; sed -i 's/Mode:1/Moed:1/' board/options.ini
  $ velk list -d board
  velk: cannot load the class Board of board: Unknown option (-9); in board/options.ini mend an option without keys or rules, one that rules test and nothing defines, or rules that test each other in a circle.
  [3]
  $ sed -i 's/velkimage/nosuch/' board/CfgClass.ini
  $ velk list -d board
  velk: cannot load the class Board of board: Unable to load hardware accessor for this configuration class (-204); install the module 'nosuch' that the catalogue names as its Accessor.
  [3]
  $ echo '[' >>board/CfgClass.ini
  $ velk list -d board
  velk: cannot read the catalogue board/CfgClass.ini: Unable to read configuration class information (-202); mend its line 29.
  [3]

Standard output and standard error that take nothing.

  $ velk status 1 >/dev/full
  velk: cannot write to standard output: No space left on device; what it should have said is lost, so run the command again.
  [2]
  $ velk set Averages=1 -c VxiDevice -d vxi --board 8 --yes 2>&1 >/dev/full | tail -1
  velk: cannot write to standard output: No space left on device; what it should have said is lost, but this is true: written and read back.
  $ velk status 1 >&-
  velk: cannot write to standard output: Bad file descriptor; what it should have said is lost, so run the command again.
  [2]
  $ cp vxi/mainframe.img before.img
  $ velk set Averages=4 -c VxiDevice -d vxi --board 8 --yes 2>/dev/full
  [2]
  $ same vxi/mainframe.img before.img
  the same bytes
