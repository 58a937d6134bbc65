
USETEXTLINKS = 1
STARTALLOPEN = 0
WRAPTEXT = 1
PRESERVESTATE = 0
HIGHLIGHT = 1
ICONPATH = 'file:///<directory>/'    //change if the gif's folder is a subfolder, for example: 'images/'

foldersTree = gFld("<i>TOVENIA RESULTS (in.tvp)</i>", "in.htm")
insDoc(foldersTree, gLnk("R", "Tovenia log file", "Tovenia_log.txt"))
aux1 = insFld(foldersTree, gFld("Run of <time>", "in.htm#<id>"))
insDoc(aux1, gLnk("R", "Settings", "in.htm#<id>_run_information"))
aux1 = insFld(foldersTree, gFld("Groups", "in.htm#<id>_gr_analyses"))
insDoc(aux1, gLnk("R", "Group1", "in.htm#<id>group0"))
insDoc(aux1, gLnk("R", "Group2", "in.htm#<id>group1"))
aux1 = insFld(foldersTree, gFld("Within-groups summary", "in.htm#<id>_gr_summary"))
insDoc(aux1, gLnk("R", "Basic indices", "in.htm#<id>_gr_sum_Basic"))
insDoc(aux1, gLnk("R", "Heterozygosity", "in.htm#<id>_gr_sum_het"))
insDoc(aux1, gLnk("R", "No. of alleles", "in.htm#<id>_gr_sum_numAll"))
aux1 = insFld(foldersTree, gFld("Samples", "in.htm#<id>_samp_analyses"))
insDoc(aux1, gLnk("R", "North lake", "in.htm#<id>samp0"))
insDoc(aux1, gLnk("R", "North bay", "in.htm#<id>samp1"))
insDoc(aux1, gLnk("R", "South hill", "in.htm#<id>samp2"))
insDoc(aux1, gLnk("R", "South delta", "in.htm#<id>samp3"))
aux1 = insFld(foldersTree, gFld("Within-samples summary", "in.htm#<id>_samp_summary"))
insDoc(aux1, gLnk("R", "Basic indices", "in.htm#<id>_samp_sum_Basic"))
insDoc(aux1, gLnk("R", "Heterozygosity", "in.htm#<id>_samp_sum_het"))
insDoc(aux1, gLnk("R", "No. of alleles", "in.htm#<id>_samp_sum_numAll"))
