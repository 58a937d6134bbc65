
USETEXTLINKS = 1
STARTALLOPEN = 0
WRAPTEXT = 1
PRESERVESTATE = 0
HIGHLIGHT = 1
ICONPATH = 'file:///<directory>/'    //change if the gif's folder is a subfolder, for example: 'images/'

foldersTree = gFld("<i>TOVENIA RESULTS (in.tvp)</i>", "in.xml")
insDoc(foldersTree, gLnk("R", "Tovenia log file", "Tovenia_log.txt"))
aux1 = insFld(foldersTree, gFld("Run of <time>", "in.xml#<id>"))
insDoc(aux1, gLnk("R", "Settings", "in.xml#<id>_run_information"))
aux1 = insFld(foldersTree, gFld("Shared haplotypes", "in.xml#<id>_shared_haplotypes"))
insDoc(aux1, gLnk("R", "East", "in.xml#<id>pop_shared0"))
insDoc(aux1, gLnk("R", "West", "in.xml#<id>pop_shared1"))
aux1 = insFld(foldersTree, gFld("Samples", "in.xml#<id>_samp_analyses"))
insDoc(aux1, gLnk("R", "East", "in.xml#<id>samp0"))
insDoc(aux1, gLnk("R", "West", "in.xml#<id>samp1"))
aux1 = insFld(foldersTree, gFld("Within-samples summary", "in.xml#<id>_samp_summary"))
insDoc(aux1, gLnk("R", "Basic indices", "in.xml#<id>_samp_sum_Basic"))
