
USETEXTLINKS = 1
STARTALLOPEN = 0
WRAPTEXT = 1
PRESERVESTATE = 0
HIGHLIGHT = 1
ICONPATH = 'file:///<directory>/'    //change if the gif's folder is a subfolder, for example: 'images/'

foldersTree = gFld("<i>TOVENIA RESULTS (in.tvp)</i>", "in.xml")
insDoc(foldersTree, gLnk("R", "Tovenia log file", "Tovenia_log.txt"))
aux1 = insFld(foldersTree, gFld("Run of <time>", "in.xml#<id>"))
